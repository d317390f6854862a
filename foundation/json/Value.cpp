// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/Value.hpp"

#include <iterator>

namespace foundation::json {

namespace {

const char* kindOf(const Value& value) noexcept {
  if (value.is<bool>()) return "bool";
  if (value.is<double>()) return "double";
  if (value.is<std::int64_t>()) return "int64";
  if (value.is<std::uint64_t>()) return "uint64";
  if (value.is<std::string>()) return "string";
  if (value.is<Array>()) return "array";
  if (value.is<Object>()) return "object";
  return "null";
}

template <class T>
[[noreturn]] void throwConversionError(const Value& from) {
  throw conversion_error(std::string("invalid conversion: ") + kindOf(from) + " to " + kindOf(T()));
}

template <class T>
const T& held(const Value& value) {
  if (const T* content = value.find<T>()) return *content;
  throwConversionError<T>(value);
}

std::size_t elementCount(const Value& container) noexcept {
  if (const auto* array = container.find<Array>()) return array->size();
  if (const auto* object = container.find<Object>()) return object->size();
  return 0;
}

// The order in which unravel takes elements out of a container, cheap for both kinds. Null where there is
// none.
Value* firstToGo(Value& container) noexcept {
  if (elementCount(container) == 0) return nullptr;
  if (auto* array = container.find<Array>()) return &array->back();
  // There is no third kind that has elements. GCOVR_EXCL_START
  if (auto* object = container.find<Object>()) return &object->begin()->second;
  return nullptr;
  // GCOVR_EXCL_STOP
}

Value* lastToGo(Value& container) noexcept {
  if (elementCount(container) == 0) return nullptr;
  if (auto* array = container.find<Array>()) return &array->front();
  // GCOVR_EXCL_START, as in firstToGo
  if (auto* object = container.find<Object>()) return &std::prev(object->end())->second;
  return nullptr;
  // GCOVR_EXCL_STOP
}

void eraseFirstToGo(Value& container) noexcept {
  if (auto* array = container.find<Array>()) {
    array->pop_back();
  } else if (auto* object = container.find<Object>()) {  // unreachable: a third kind
    object->erase(object->begin());
  }
}

// Empties a container of any depth with neither recursion nor memory: the tree is turned until its root is
// flat. A child that has elements becomes the root, and the old root takes the place of the child's last
// element, which in turn moves to where the child was. So the old root is met again, and each container
// becomes the root once on the way down and once on the way up.
void unravel(Value& container) noexcept {
  Value root = std::move(container);
  while (Value* const element = firstToGo(root)) {
    Value child = std::move(*element);
    if (Value* const link = lastToGo(child)) {
      if (elementCount(root) > 1) {
        *element = std::move(*link);
        *link = std::move(root);
      }
      root = std::move(child);
    } else {
      eraseFirstToGo(root);
    }
  }
}

// Turning costs more than recursion, which therefore serves the depths that occur.
constexpr int recursionLimit = 128;

void clear(Value& container, int depth) noexcept {
  const auto clearElement = [depth](Value& element) {
    if (elementCount(element) == 0) return;
    if (depth == recursionLimit) {
      unravel(element);
    } else {
      clear(element, depth + 1);
    }
  };
  if (auto* array = container.find<Array>()) {
    for (Value& element : *array) clearElement(element);
    array->clear();
  } else if (auto* object = container.find<Object>()) {  // unreachable: a third kind
    for (auto& member : *object) clearElement(member.second);
    object->clear();
  }
}

}  // namespace

void Value::dismantle() noexcept {
  clear(*this, 1);
}

// Containers in containers wait in a list for their turn, for recursion would need stack by depth.
Value::Value(const Value& other) : Value() {
  struct Job {
    const Value* from;
    Value* to;
  };
  std::vector<Job> waiting;
  const auto copy = [&waiting](const Value& from, Value& to) {
    if (elementCount(from) != 0) {
      waiting.push_back({&from, &to});
    } else {
      to.data_ = from.data_;
    }
  };
  Job job{&other, this};
  for (;;) {
    if (const auto* array = job.from->find<Array>()) {
      auto& elements = job.to->data_.emplace<Array>();
      elements.resize(array->size());
      auto to = elements.begin();
      for (const Value& element : *array) copy(element, *to++);
    } else if (const auto* object = job.from->find<Object>()) {
      auto& members = job.to->data_.emplace<Object>();
      for (const auto& [name, value] : *object) copy(value, members.try_emplace(members.end(), name)->second);
    } else {
      job.to->data_ = job.from->data_;
    }
    if (waiting.empty()) return;
    job = waiting.back();
    waiting.pop_back();
  }
}

Value& Value::operator=(const Value& other) {
  Value copy(other);
  return *this = std::move(copy);
}

Value& Value::operator=(Value&& other) noexcept {
  Value taken(std::move(other));  // first, for what is destroyed may hold it
  data_ = std::move(taken.data_);
  return *this;
}

template <>
double Value::to<double>() const {
  if (const auto* integer = find<std::int64_t>()) return static_cast<double>(*integer);
  if (const auto* natural = find<std::uint64_t>()) return static_cast<double>(*natural);
  return held<double>(*this);
}

template <>
std::string Value::to<std::string>() const {
  return held<std::string>(*this);
}

template <>
Array Value::to<Array>() const {
  return held<Array>(*this);
}

template <>
Object Value::to<Object>() const {
  return held<Object>(*this);
}

// A list instead of recursion, as for copying.
bool operator==(const Value& left, const Value& right) {
  struct Pair {
    const Value* left;
    const Value* right;
  };
  std::vector<Pair> waiting;
  const auto mayEqual = [&waiting](const Value& a, const Value& b) {
    if (elementCount(a) == 0) return a.data_ == b.data_;
    if (a.data_.index() != b.data_.index() || elementCount(a) != elementCount(b)) return false;
    waiting.push_back({&a, &b});
    return true;
  };
  if (!mayEqual(left, right)) return false;
  while (!waiting.empty()) {
    const Pair pair = waiting.back();
    waiting.pop_back();
    if (const auto* array = pair.left->find<Array>()) {
      auto other = std::get<Array>(pair.right->data_).begin();
      for (const Value& element : *array) {
        if (!mayEqual(element, *other++)) return false;
      }
    } else if (const auto* object = pair.left->find<Object>()) {  // unreachable: a third kind
      auto other = std::get<Object>(pair.right->data_).begin();
      for (const auto& [name, value] : *object) {
        if (name != other->first || !mayEqual(value, other->second)) return false;
        ++other;
      }
    }
  }
  return true;
}

}  // namespace foundation::json
