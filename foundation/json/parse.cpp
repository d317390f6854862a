// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/parse.hpp"

#include <array>
#include <string>
#include <utility>
#include <variant>

#include "foundation/json/Reader.hpp"
#include "foundation/json/Value.hpp"

namespace foundation::json {

namespace {

// Of most arrays, which then need not grow.
constexpr std::size_t usualSize = 4;

}  // namespace

Value parse(std::string_view text) {
  Reader reader(text);
  Value root;
  std::string name;

  // The containers being filled, the innermost one last. They stay where they are: nothing is added to one
  // before those inside it are closed.
  std::array<Value*, Reader::maxDepth> open;
  Array* array = nullptr;    // the innermost one, if it is an array
  Object* object = nullptr;  // the innermost one, if it is an object

  const auto put = [&](auto&& value) -> Value& {
    if (array != nullptr) {
      if (array->capacity() == 0) array->reserve(usualSize);
      return array->emplace_back(std::forward<decltype(value)>(value));
    }
    if (object == nullptr) return root = std::forward<decltype(value)>(value);
    return object->insert_or_assign(object->end(), std::move(name), std::forward<decltype(value)>(value))
        ->second;
  };
  const auto fill = [&](Value* container) {
    array = container == nullptr ? nullptr : container->find<Array>();
    object = container == nullptr ? nullptr : container->find<Object>();
  };

  for (;;) {
    switch (reader.next()) {  // unreachable: there is no other token
      case Token::ObjectBegin:
        fill(open[reader.depth() - 1] = &put(Object()));
        break;
      case Token::ArrayBegin:
        fill(open[reader.depth() - 1] = &put(Array()));
        break;
      case Token::ObjectEnd:
      case Token::ArrayEnd:
        fill(reader.depth() == 0 ? nullptr : open[reader.depth() - 1]);
        break;
      case Token::Name:
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
