// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/parse.hpp"

#include <array>
#include <cstddef>
#include <deque>
#include <iterator>
#include <string>
#include <utility>
#include <variant>

#include "foundation/json/Reader.hpp"
#include "foundation/json/Value.hpp"

namespace foundation::json {

Value parse(std::string_view text) {
  Reader reader(text);
  Value root;
  std::string name;

  // The containers being filled, the innermost one last. What an array will hold waits among the elements
  // until the array ends, and then moves into it all at once, so that no array ever grows. All stay where
  // they are until then.
  struct Open {
    Value* container;
    std::size_t firstElement;  // if it is an array
  };
  std::array<Open, Reader::maxDepth> open;
  std::deque<Value> elements;
  bool inArray = false;
  Object* object = nullptr;  // the innermost container, if it is an object

  const auto put = [&](auto&& value) -> Value& {
    if (inArray) return elements.emplace_back(std::forward<decltype(value)>(value));
    if (object == nullptr) return root = std::forward<decltype(value)>(value);
    return object->insert_or_assign(object->end(), std::move(name), std::forward<decltype(value)>(value))
        ->second;
  };
  const auto fill = [&](Value& container) {
    inArray = container.is<Array>();
    object = container.find<Object>();
  };
  const auto begin = [&](auto&& container) {
    Value& value = put(std::forward<decltype(container)>(container));
    open[reader.depth() - 1] = {&value, elements.size()};
    fill(value);
  };
  const auto endArray = [&] {
    const auto [array, firstElement] = open[reader.depth()];
    const auto first = elements.begin() + static_cast<std::ptrdiff_t>(firstElement);
    *array = Array(std::move_iterator(first), std::move_iterator(elements.end()));
    elements.erase(first, elements.end());
  };

  for (;;) {
    switch (reader.next()) {  // unreachable: there is no other token
      case Token::ObjectBegin:
        begin(Object());
        break;
      case Token::ArrayBegin:
        begin(Array());
        break;
      case Token::ArrayEnd:
        endArray();
        [[fallthrough]];
      case Token::ObjectEnd:
        if (reader.depth() != 0) fill(*open[reader.depth() - 1].container);
        break;
      case Token::Key:
        reader.copyTo(name);
        break;
      case Token::String: {
        std::string string;
        reader.copyTo(string);
        put(std::move(string));
        break;
      }
      case Token::Number:
        std::visit(put, reader.number());
        break;
      case Token::True:
        put(true);
        break;
      case Token::False:
        put(false);
        break;
      case Token::Null:
        put(nullptr);
        break;
      case Token::End:
        return root;
      case Token::Error:
        throw parse_error(reader.offset());
    }
  }
}

}  // namespace foundation::json
