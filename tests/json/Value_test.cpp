// SPDX-License-Identifier: Apache-2.0
#include "foundation/json/Value.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <bitset>
#include <cstddef>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/allocations.hpp"

namespace foundation::json {
namespace {

using testing::StrEq;
using testing::ThrowsMessage;

static_assert(std::is_nothrow_default_constructible_v<Value>);
static_assert(std::is_nothrow_move_constructible_v<Value> && std::is_nothrow_move_assignable_v<Value>);
static_assert(std::is_same_v<Array, std::vector<Value>>);
static_assert(std::is_same_v<Object, std::map<std::string, Value>>);
static_assert(std::is_base_of_v<std::runtime_error, conversion_error>);

// A pointer is never taken for a bool.
static_assert(!std::is_constructible_v<Value, void*> && !std::is_constructible_v<Value, const int*>);
static_assert(!std::is_constructible_v<Value, Value*> && !std::is_constructible_v<Value, void (*)()>);

template <class From>
struct ConvertsTo {
  operator From() const;
};
struct ConvertsWhenChangeable {
  operator int();
};
struct ConvertsToStringAndInt : ConvertsTo<std::string>, ConvertsTo<int> {};
struct ConvertsToTwoNumbers : ConvertsTo<std::string>, ConvertsTo<int>, ConvertsTo<long> {};
struct ConvertsToAnything {
  template <class T>
  operator T() const;
};
enum Colour : int {};
enum class Scoped : int {};

// Whether a `T` becomes a value wherever one is wanted, or, if not, whether the compiler refuses it
// everywhere.
template <class T>
constexpr bool isTaken = std::is_convertible_v<T, Value>&& std::is_convertible_v<T&, Value>&&
    std::is_constructible_v<Value, T>&& std::is_assignable_v<Value&, T&>&& requires(T& source) {
  Array{source}, Object{{"name", source}};
};
template <class T>
constexpr bool isRefused =
    !std::is_constructible_v<Value, T> && !std::is_constructible_v<Value, T&> &&
    !std::is_constructible_v<Value, const T&> && !std::is_assignable_v<Value&, T&> && !requires(T & source) {
  Array{source};
}
&&!requires(T & source) {
  Object{{"name", source}};
};

static_assert(isTaken<bool> && isTaken<float> && isTaken<double>);
static_assert(isTaken<char> && isTaken<wchar_t> && isTaken<char8_t> && isTaken<char32_t> && isTaken<short>);
static_assert(isTaken<const char*> && isTaken<char*> && isTaken<std::string> && isTaken<std::nullptr_t>);
static_assert(isTaken<std::vector<bool>::reference> && isTaken<std::vector<bool>::const_reference>);
static_assert(std::is_constructible_v<Value, std::atomic<bool>&> && isTaken<std::true_type>);
static_assert(isTaken<std::false_type> && isTaken<std::is_same<int, char>>);
static_assert(std::is_constructible_v<Value, ConvertsTo<std::string>>);
static_assert(isTaken<std::reference_wrapper<Value>>);

static_assert(isRefused<std::bitset<8>::reference> && isRefused<std::reference_wrapper<bool>>);
static_assert(isRefused<std::integral_constant<int, 3>> && isRefused<std::atomic<int>>);
static_assert(isRefused<ConvertsTo<bool>> && isRefused<ConvertsTo<int>> && isRefused<ConvertsTo<double>>);
static_assert(isRefused<ConvertsTo<char8_t>> && isRefused<ConvertsTo<const char*>>);
static_assert(isRefused<ConvertsWhenChangeable> && isRefused<ConvertsToAnything>);
static_assert(isRefused<ConvertsToStringAndInt> && isRefused<ConvertsToTwoNumbers>);
static_assert(isRefused<Colour> && isRefused<Scoped> && isRefused<std::byte>);
static_assert(isRefused<long double>);
__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;
static_assert(isRefused<Int128> && isRefused<UInt128>);

template <class T>
concept Convertible = requires(const Value& value) {
  value.to<T>();
};
static_assert(Convertible<double> && Convertible<std::string> && Convertible<Array> && Convertible<Object>);
static_assert(!Convertible<bool> && !Convertible<int> && !Convertible<std::int64_t> &&
              !Convertible<std::uint64_t> && !Convertible<float> && !Convertible<std::nullptr_t> &&
              !Convertible<const char*>);

template <class T>
concept Findable = requires(Value& value) {
  value.find<T>(), value.is<T>();
};
static_assert(Findable<std::nullptr_t> && Findable<bool> && Findable<std::int64_t> &&
              Findable<std::uint64_t>);
static_assert(!Findable<int> && !Findable<float> && !Findable<const char*> && !Findable<Value>);

static_assert(std::is_same_v<decltype(std::declval<const Value&>().find<Array>()), const Array*>);
static_assert(std::is_same_v<decltype(std::declval<Value&>().find<Array>()), Array*>);

// How many of the eight types the value claims to hold.
int kindsOf(const Value& value) {
  return value.is<std::nullptr_t>() + value.is<bool>() + value.is<double>() + value.is<std::int64_t>() +
         value.is<std::uint64_t>() + value.is<std::string>() + value.is<Array>() + value.is<Object>();
}

// The content of a value that is known to hold a `T`.
template <class T>
T& the(Value& value) {
  if (T* content = value.find<T>()) return *content;
  throw std::logic_error("another kind is held");
}

template <class T>
void expectHolds(const Value& value, const T& content) {
  EXPECT_EQ(kindsOf(value), 1);
  EXPECT_TRUE(value.is<T>());
  const T* held = value.find<T>();
  ASSERT_TRUE(held != nullptr);
  EXPECT_TRUE(*held == content);
}

// `levels` containers, one in the other, with siblings before and behind, of every kind.
Value deepTree(int levels) {
  Value tree = "leaf";
  for (int level = 0; level < levels; ++level) {
    Array array;
    Object object;
    switch (level % 7) {
      case 0:
        array.push_back(std::move(tree));
        break;
      case 1:
        array.push_back(level);
        array.push_back(std::move(tree));
        break;
      case 2:
        object.try_emplace("inner", std::move(tree));
        break;
      case 3:
        array.push_back(std::move(tree));
        array.push_back(Array{1, Array{}});
        break;
      case 4:
        object.try_emplace("first", Object{{"x", nullptr}});
        object.try_emplace("inner", std::move(tree));
        break;
      case 5:
        object.try_emplace("inner", std::move(tree));
        object.try_emplace("last", Array{"a string that needs memory of its own"});
        break;
      default:
        array.push_back(Object{});
        array.push_back(std::move(tree));
        array.push_back(1.5);
    }
    tree = object.empty() ? Value(std::move(array)) : Value(std::move(object));
  }
  return tree;
}

// A tree that has all kinds and needs memory in many places.
Value richTree() {
  const std::string text = "a string that needs memory of its own";
  return Object{{text, Array{text, 1, 2u, 3.5, true, nullptr, Array{Array{text}, Object{}}}},
                {"object", Object{{"inner", Object{{text, text}}}}}};
}

TEST(Value, HoldsABoolForTheClassesThatStandForOne) {
  std::vector<bool> flags{true, false};
  const std::atomic<bool> on = true;

  expectHolds<bool>(flags[0], true);
  expectHolds<bool>(flags[1], false);
  expectHolds<bool>(std::as_const(flags)[0], true);
  expectHolds<bool>(on, true);
  expectHolds<bool>(std::true_type(), true);
  expectHolds<bool>(std::false_type(), false);
  expectHolds<bool>(std::is_same<int, char>(), false);
}

TEST(Value, HoldsABoolForTheseClassesInContainersAndByAssignment) {
  std::vector<bool> flags{true};
  Value value;
  value = flags[0];

  expectHolds<bool>(value, true);
  EXPECT_EQ(Array{flags[0]}, Array{true});
  EXPECT_EQ((Object{{"on", flags[0]}}), (Object{{"on", true}}));
}

TEST(Value, HoldsANumberForACharacterAndADoubleForAFloat) {
  expectHolds<std::uint64_t>(u8'a', 97U);
  expectHolds<double>(1.5F, 1.5);
}

TEST(Value, IsNullUnlessToldOtherwise) {
  expectHolds(Value(), nullptr);
  expectHolds(Value(nullptr), nullptr);
}

TEST(Value, HoldsWhatItIsMadeFrom) {
  expectHolds(Value(true), true);
  expectHolds(Value(false), false);
  expectHolds(Value(1.5), 1.5);
  expectHolds(Value(1.5f), 1.5);
  expectHolds<std::string>(Value("text"), "text");
  expectHolds(Value(std::string("a\0b", 3)), std::string("a\0b", 3));
  expectHolds(Value(Array{1, "x"}), Array{1, "x"});
  expectHolds(Value(Object{{"a", 1}}), Object{{"a", 1}});
}

TEST(Value, HoldsSignedIntegersAsInt64AndUnsignedOnesAsUint64) {
  expectHolds(Value(-1), std::int64_t{-1});
  expectHolds(Value(short{-2}), std::int64_t{-2});
  expectHolds(Value(static_cast<signed char>(-3)), std::int64_t{-3});
  expectHolds(Value(std::numeric_limits<long>::min()), std::int64_t{std::numeric_limits<long>::min()});
  expectHolds(Value(std::numeric_limits<long long>::max()), std::numeric_limits<std::int64_t>::max());
  expectHolds(Value(1u), std::uint64_t{1});
  expectHolds(Value(static_cast<unsigned char>(255)), std::uint64_t{255});
  expectHolds(Value(std::numeric_limits<unsigned long long>::max()),
              std::numeric_limits<std::uint64_t>::max());
  expectHolds(Value(std::size_t{7}), std::uint64_t{7});
}

TEST(Value, IsMadeImplicitlyInsideContainersAndReturns) {
  const auto make = [](bool text) -> Value {
    if (text) return "text";
    return 1;
  };

  const Object object{{"null", nullptr}, {"list", Array{true, -1, 2u, 0.5, "x", Array{}, Object{}}}};

  EXPECT_EQ(make(true), "text");
  EXPECT_EQ(make(false), 1);
  EXPECT_TRUE(object.at("null").is<std::nullptr_t>());
  EXPECT_EQ(object.at("list").to<Array>().size(), 7u);
}

TEST(Value, IsReadAsItsManualShows) {
  const auto secondsOf = [](const Value& song) {
    if (const auto* members = song.find<Object>()) return members->at("seconds").to<double>();
    return 0.0;
  };

  const Value song = Object{{"title", "Aria"}, {"seconds", 135}, {"notes", Array{"g", "f"}}};

  EXPECT_EQ(secondsOf(song), 135.0);
}

TEST(Value, LetsItsContentBeChangedInPlace) {
  Value value = Array{1};

  the<Array>(value).push_back("more");

  EXPECT_EQ(value, (Array{1, "more"}));
  EXPECT_EQ(value.find<Object>(), nullptr);
  EXPECT_EQ(std::as_const(value).find<std::string>(), nullptr);
}

TEST(Value, ConvertsEveryNumberToDoubleAndTheOtherTargetsFromTheirOwnKindOnly) {
  EXPECT_EQ(Value(1.5).to<double>(), 1.5);
  EXPECT_EQ(Value(-3).to<double>(), -3.0);
  EXPECT_EQ(Value(3u).to<double>(), 3.0);
  EXPECT_EQ(Value(std::numeric_limits<std::uint64_t>::max()).to<double>(), 18446744073709551616.0);
  EXPECT_EQ(Value("text").to<std::string>(), "text");
  EXPECT_EQ(Value(Array{1}).to<Array>(), Array{1});
  EXPECT_EQ(Value(Object{{"a", 1}}).to<Object>(), (Object{{"a", 1}}));
}

TEST(Value, NamesBothKindsWhenItRefusesAConversion) {
  const std::vector<std::pair<Value, std::string>> values = {
      {nullptr, "null"}, {true, "bool"},     {0.5, "double"},    {-1, "int64"},
      {1u, "uint64"},    {"text", "string"}, {Array{}, "array"}, {Object{}, "object"}};
  const auto expectRefusal = [](auto convert, const std::string& from, const std::string& to) {
    EXPECT_THAT(convert, ThrowsMessage<conversion_error>(StrEq("invalid conversion: " + from + " to " + to)));
  };

  for (const auto& [value, name] : values) {
    const Value& from = value;
    const bool number = name == "double" || name == "int64" || name == "uint64";
    if (!number) expectRefusal([&] { from.to<double>(); }, name, "double");
    if (name != "string") expectRefusal([&] { from.to<std::string>(); }, name, "string");
    if (name != "array") expectRefusal([&] { from.to<Array>(); }, name, "array");
    if (name != "object") expectRefusal([&] { from.to<Object>(); }, name, "object");
  }
}

TEST(Value, NamesTheKindOfNumberThatItDoesNotConvert) {
  const Value integer = std::int64_t{-1};
  const Value natural = std::uint64_t{1};
  const Value real = 1.5;

  EXPECT_THAT([&] { integer.to<std::string>(); },
              ThrowsMessage<conversion_error>(StrEq("invalid conversion: int64 to string")));
  EXPECT_THAT([&] { natural.to<Array>(); },
              ThrowsMessage<conversion_error>(StrEq("invalid conversion: uint64 to array")));
  EXPECT_THAT([&] { real.to<Object>(); },
              ThrowsMessage<conversion_error>(StrEq("invalid conversion: double to object")));
}

TEST(Value, EqualsWhatHasItsKindAndContent) {
  const std::vector<Value> distinct = {nullptr,
                                       true,
                                       false,
                                       1,
                                       1u,
                                       1.0,
                                       2,
                                       "",
                                       "1",
                                       std::string("1\0", 2),
                                       Array{},
                                       Array{nullptr},
                                       Array{1},
                                       Array{1, 1},
                                       Array{Value(Array{1})},
                                       Array{Value(Array{2})},
                                       Array{Array{1}, 3},
                                       Object{},
                                       Object{{"a", 1}},
                                       Object{{"b", 1}},
                                       Object{{"a", 2}},
                                       Object{{"a", Array{1}}},
                                       Object{{"a", Object{{"b", 1}}}},
                                       Object{{"a", Object{{"b", 1}, {"c", 2}}}}};

  for (std::size_t i = 0; i < distinct.size(); ++i) {
    for (std::size_t j = 0; j < distinct.size(); ++j) {
      EXPECT_EQ(distinct[i] == Value(distinct[j]), i == j) << i << " and " << j;
    }
  }
  EXPECT_EQ(Value(0.0), Value(-0.0));
  EXPECT_NE(Value(std::numeric_limits<double>::quiet_NaN()), Value(std::numeric_limits<double>::quiet_NaN()));
}

TEST(Value, CopiesAreIndependent) {
  const Value original = richTree();
  Value copy = original;
  EXPECT_EQ(copy, original);

  the<Object>(the<Object>(copy).at("object")).at("inner") = 1;

  EXPECT_NE(copy, original);
  EXPECT_EQ(original, richTree());
}

TEST(Value, MovesItsContentAndStaysUsable) {
  Value source = richTree();

  Value target = std::move(source);
  EXPECT_EQ(target, richTree());

  source = "again";
  EXPECT_EQ(source, "again");
  source = std::move(target);
  EXPECT_EQ(source, richTree());
}

TEST(Value, TakesTheValueOfAnyKindOverThatOfAnyOther) {
  const std::vector<Value> values = {
      nullptr, true, 1, 1u, 1.5, "a string that needs memory of its own", richTree(), Array{Value(Array{1})}};

  for (const Value& from : values) {
    for (const Value& to : values) {
      Value copied = to;
      Value moved = to;

      copied = from;
      moved = Value(from);

      EXPECT_EQ(copied, from);
      EXPECT_EQ(moved, from);
    }
  }
}

TEST(Value, CanBeAssignedItselfOrAPartOfItself) {
  Value value = Array{1, Object{{"inner", Array{2, "part"}}}};
  const auto inner = [&]() -> Value& { return the<Object>(the<Array>(value).at(1)).at("inner"); };

  value = *&value;
  ASSERT_EQ(inner(), (Array{2, "part"}));
  value = inner();
  EXPECT_EQ(value, (Array{2, "part"}));
  value = std::move(the<Array>(value).at(1));
  EXPECT_EQ(value, "part");
}

TEST(Value, IsDestroyedWhateverItsDepthWithoutMemory) {
  constexpr int levels = 250'000;
  const auto live = allocations::live();
  {
    const Value tree = deepTree(levels);
    ASSERT_GT(allocations::live(), live + levels);
    allocations::failAt(1);  // an allocation in the destructor would end the process
  }
  allocations::failAt(0);

  EXPECT_EQ(allocations::live(), live);
}

TEST(Value, IsDestroyedWhateverTheDepthOfSeveralOfItsBranches) {
  const auto live = allocations::live();
  {
    Array branches;
    for (int i = 0; i < 3; ++i) branches.push_back(deepTree(10'000 + i));
    Object both{{"left", branches.back()}, {"right", std::move(branches)}};
    Value tree = std::move(both);
    // far below the levels that are taken down by recursion
    for (int i = 0; i < 150; ++i) {
      Array fork;
      fork.push_back(deepTree(150));
      fork.push_back(std::move(tree));
      fork.push_back(deepTree(20));
      tree = std::move(fork);
    }
  }

  EXPECT_EQ(allocations::live(), live);
}

TEST(Value, IsAssignedCopiedAndComparedWhateverItsDepth) {
  const Value tree = deepTree(60'000);

  Value copy = tree;
  EXPECT_TRUE(copy == tree);

  Value deeper = deepTree(60'001);
  EXPECT_FALSE(deeper == tree);

  deeper = copy;
  EXPECT_TRUE(deeper == tree);
  deeper = nullptr;
  EXPECT_TRUE(deeper.is<std::nullptr_t>());
}

TEST(Value, LeavesEverythingValidWhenACopyRunsOutOfMemory) {
  const Value original = richTree();
  Value target = Array{"as before"};
  const auto live = allocations::live();

  const auto failures = allocations::failEach([&] { Value(original).is<Object>(); },
                                              [&] { EXPECT_EQ(allocations::live(), live); });
  EXPECT_GE(failures, 10u);

  allocations::failEach([&] { target = original; }, [&] { EXPECT_EQ(target, Array{"as before"}); });
  EXPECT_EQ(target, original);
  EXPECT_EQ(original, richTree());
}

TEST(Value, ComparesAgainAfterAComparisonThatRanOutOfMemory) {
  const Value left = richTree();
  const Value right = richTree();
  bool equal = false;

  const auto failures = allocations::failEach([&] { equal = left == right; }, [] {});

  EXPECT_GE(failures, 1u);
  EXPECT_TRUE(equal);
}

}  // namespace
}  // namespace foundation::json
