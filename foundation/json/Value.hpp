// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/core/export.hpp"

namespace foundation::json {

class Value;

/// Compilers differ on `Array{array}`: it may be a copy of `array` or an array that holds it. Write
/// `Array(array)` for the one, `Array{Value(array)}` for the other.
using Array = std::vector<Value>;

/// The members by name, in the byte order of the names.
using Object = std::map<std::string, Value>;

/// Thrown by `Value::to`. Its text is "invalid conversion: " + from + " to " + to, each of the two one of
/// `null`, `bool`, `double`, `int64`, `uint64`, `string`, `array` and `object`.
class FOUNDATION_EXPORT conversion_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

namespace impl {

template <class T, class... Types>
concept OneOf = (std::same_as<T, Types> || ...);

/// The integer types that become `std::int64_t` or `std::uint64_t`.
template <class T>
concept Integer = std::integral<T> && !std::same_as<T, bool> && sizeof(T) <= sizeof(std::int64_t);

/// The class types of the standard library that stand for one `bool`; the traits derive from the last two.
template <class T>
concept BoolClass = std::is_class_v<T> &&
    (OneOf<T, std::vector<bool>::reference, std::vector<bool>::const_reference, std::atomic<bool>> ||
     std::derived_from<T, std::true_type> || std::derived_from<T, std::false_type>);

template <class T, class... Numbers>
concept ConvertsToAny = (std::is_convertible_v<T&, Numbers> || ...) ||
                        (std::is_convertible_v<T, Numbers> || ...);

/// Whether a `T` converts implicitly to a number. Asks for each one, because a class may convert to several.
template <class T>
concept NumberLike = ConvertsToAny<T, bool, char, signed char, unsigned char, wchar_t, char8_t, char16_t,
                                   char32_t, short, unsigned short, int, unsigned, long, unsigned long,
                                   long long, unsigned long long, float, double, long double>;

/// The types that a value may hold, `std::nullptr_t` for null.
template <class T>
concept Held =
    OneOf<T, std::nullptr_t, bool, double, std::int64_t, std::uint64_t, std::string, Array, Object>;

/// The types that a value may be converted to.
template <class T>
concept Target = OneOf<T, double, std::string, Array, Object>;

/// What converts to a number but is not made into a value: enumerators, classes, and numbers of which a
/// `double` or a 64-bit integer may lose digits.
template <class T>
concept Refused = !OneOf<T, Value, float> && !Held<T> && !Integer<T> && !BoolClass<T> &&
                  !std::is_pointer_v<T> && !std::is_array_v<T> && NumberLike<T>;

}  // namespace impl

/// A JSON value: null, a `bool`, a number (`double`, `std::int64_t` or `std::uint64_t`), a `std::string` of
/// any bytes, an `Array` or an `Object`. Made implicitly from each of them, and from the following:
///
/// | source                                                            | kind                              |
/// |-------------------------------------------------------------------|-----------------------------------|
/// | other integer types up to 64 bits, character types too            | `std::int64_t` or `std::uint64_t` |
/// | `float`                                                           | `double`                          |
/// | `std::vector<bool>::reference`, `std::atomic<bool>`               | `bool`                            |
/// | `std::true_type`, `std::false_type` and what derives from them    | `bool`                            |
/// | string literals, `char*`, `const char*`                           | `std::string`                     |
///
/// Everything else that C++ would convert to a number does not compile, also as an element of an `Array` or a
/// member of an `Object`: enumerators, `long double`, integers of more than 64 bits, and all other classes
/// with a conversion to a number or a pointer, such as `std::bitset<8>::reference`,
/// `std::reference_wrapper<bool>` and `std::integral_constant<int, 3>`. Convert these yourself. No other
/// pointer becomes a value.
///
///     const Value song = Object{{"title", "Aria"}, {"seconds", 135}, {"notes", Array{"g", "f"}}};
///     if (const auto* members = song.find<Object>()) return members->at("seconds").to<double>();  // 135.0
///
/// A value like `int`: each owns its content, copies are independent, no lock inside. Moves cost no memory
/// and leave the source valid, its content unspecified. Whatever the depth of the tree, the stack that any
/// operation needs is bounded, and destruction needs no memory.
class FOUNDATION_EXPORT Value {
 public:
  /// Null.
  Value() noexcept = default;
  Value(std::nullptr_t) noexcept {}
  // Templates, because each of these takes its own types only.
  template <std::same_as<bool> T>
  Value(T value) noexcept : data_(std::in_place_type<bool>, value) {}
  template <impl::BoolClass T>
  Value(const T& value) noexcept : data_(std::in_place_type<bool>, static_cast<bool>(value)) {}
  template <impl::OneOf<float, double> T>
  Value(T value) noexcept : data_(std::in_place_type<double>, value) {}
  /// Any integer type up to 64 bits: signed ones are held as `std::int64_t`, unsigned ones as
  /// `std::uint64_t`.
  template <impl::Integer T>
  Value(T value) noexcept
      : data_(std::in_place_type<std::conditional_t<std::signed_integral<T>, std::int64_t, std::uint64_t>>,
              value) {}
  // Deleted, not left out: otherwise `Array{x}` would be an array of x nulls.
  template <impl::Refused T>
  Value(const T& value) = delete;
  /// The bytes up to the first NUL; `text` must not be null.
  template <impl::OneOf<const char*, char*> T>
  Value(T text) : data_(std::in_place_type<std::string>, text) {}
  Value(std::string value) noexcept : data_(std::in_place_type<std::string>, std::move(value)) {}
  Value(Array value) noexcept : data_(std::in_place_type<Array>, std::move(value)) {}
  Value(Object value) noexcept : data_(std::in_place_type<Object>, std::move(value)) {}

  /// @throws std::bad_alloc
  Value(const Value& other);
  Value(Value&& other) noexcept = default;
  /// `other` may be a part of this value.
  /// @throws std::bad_alloc this value is as before.
  Value& operator=(const Value& other);
  /// `other` may be a part of this value.
  Value& operator=(Value&& other) noexcept;
  ~Value() {
    if (isContainer()) dismantle();
  }

  /// Whether the value holds exactly a `T`: one of the eight types, `std::nullptr_t` for null.
  template <impl::Held T>
  bool is() const noexcept {
    return std::holds_alternative<T>(data_);
  }

  /// The held `T`, or null if the value holds something else. Valid until the value is assigned to, moved
  /// from or destroyed.
  template <impl::Held T>
  const T* find() const noexcept {
    return std::get_if<T>(&data_);
  }
  template <impl::Held T>
  T* find() noexcept {
    return std::get_if<T>(&data_);
  }

  /// A copy of the held content as a `double`, `std::string`, `Array` or `Object`. Any number converts to
  /// `double`, to the nearest one where it has more digits; nothing else crosses kinds.
  /// @throws conversion_error the value holds another kind.
  /// @throws std::bad_alloc
  template <impl::Target T>
  T to() const;

  /// By kind and content: the numbers 1 and 1.0 differ, as do 1 and 1u; a NaN differs from itself.
  /// @throws std::bad_alloc comparing containers in containers takes memory for a list of them.
  FOUNDATION_EXPORT friend bool operator==(const Value& left, const Value& right);

 private:
  bool isContainer() const noexcept { return is<Array>() || is<Object>(); }
  void dismantle() noexcept;  // leaves an empty container

  // deliberate: the standard promises only std::vector of a type that is not complete yet; the standard
  // libraries give the same for std::map. Never valueless: all that changes it are moves, which do not throw.
  std::variant<std::nullptr_t, bool, double, std::int64_t, std::uint64_t, std::string, Array, Object> data_;
};

template <>
FOUNDATION_EXPORT double Value::to<double>() const;
template <>
FOUNDATION_EXPORT std::string Value::to<std::string>() const;
template <>
FOUNDATION_EXPORT Array Value::to<Array>() const;
template <>
FOUNDATION_EXPORT Object Value::to<Object>() const;

}  // namespace foundation::json
