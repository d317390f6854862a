// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

#include "foundation/json.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::json {
namespace {

using exhaustion::Absorbs;
using exhaustion::exhaust;

// Containers in containers, and texts beyond what a string holds in itself.
const std::string longText(100, 'x');

Value tree() {
  return Object{{longText, Array{1, 2.5, longText, Array{longText, nullptr}, Object{{"deep", longText}}}},
                {"b", Object{{longText + "b", true}, {"c", Array{}}}},
                {"d", 7U}};
}

Value deep(int levels) {
  Value value = longText;
  for (int i = 0; i < levels; ++i) {
    Array outer;
    outer.push_back(std::move(value));  // an initializer list would be copied, with all that is inside
    value = std::move(outer);
  }
  return value;
}

TEST(ValueWithoutMemory, IsCopiedWholeOrNotAtAll) {
  exhaust(
      {"json::Value::Value"}, tree, [](const Value& value) { return Value(value); },
      [](const Value& value) { EXPECT_EQ(value, tree()); });
  exhaust({"inline json::Value::Value(char const*)"}, [] { return Value(longText.c_str()); });
}

TEST(ValueWithoutMemory, StaysAsItIsWhenItCannotBeAssignedTo) {
  struct Pair {
    Value target = Array{"as before"};
    Value source = tree();
  };
  exhaust(
      {"json::Value::operator=(Value)"}, [] { return Pair(); },
      [](Pair& pair) {
        pair.target = pair.source;
        return std::move(pair.target);
      },
      [](const Pair& pair) {
        EXPECT_EQ(pair.target, Array{"as before"});
        EXPECT_EQ(pair.source, tree());
      });
  exhaust(
      {"json::Value::operator=(Value)"}, tree,
      [](Value& value) { value = value.find<Object>()->at(longText); },
      [](const Value& value) { EXPECT_EQ(value, tree()); });
}

TEST(ValueWithoutMemory, MovesAndDies) {
  exhaust({"json::Value::operator=(Value&&)", "json::Value::dismantle"}, tree, [](Value& value) {
    Value other = Array{};
    other = std::move(value);
    value = nullptr;
  });
  exhaust(
      {"json::Value::dismantle"}, [] { return deep(1000); }, [](Value& value) { value = 1; });
}

TEST(ValueWithoutMemory, IsComparedOrNot) {
  exhaust(
      {"json::operator=="}, [] { return std::pair(tree(), tree()); },
      [](const auto& pair) { return pair.first == pair.second; },
      [](const auto& pair) { EXPECT_EQ(pair.first, pair.second); });
}

TEST(ValueWithoutMemory, ConvertsOrNot) {
  const auto whole = [](const Value& value) { EXPECT_EQ(value, tree()); };
  exhaust(
      {"json::Value::to<map<string, Value>>"}, tree, [](const Value& value) { return value.to<Object>(); },
      whole);
  exhaust(
      {"json::Value::to<vector<Value>>"},
      [] {
        return Value(Array{tree(), 1});
      },
      [](const Value& value) { return value.to<Array>(); });
  exhaust(
      {"json::Value::to<string>"}, [] { return Value(longText); },
      [](const Value& value) { return value.to<std::string>(); });
  exhaust(
      {"json::Value::to<double>"}, [] { return Value(1U); },
      [](const Value& value) { return value.to<double>(); });
}

template <class T>
std::string refusalOf(const Value& value) {
  try {
    value.to<T>();
    return "none";
  } catch (const conversion_error& error) {
    return error.what();
  }
}

TEST(ValueWithoutMemory, RefusesAConversionInItsWordsOrThrows) {
  exhaust(
      {"json::Value::to<double>"}, tree, &refusalOf<double>, [](const Value&) {}, Absorbs::Failures);
  exhaust(
      {"json::Value::to<string>"}, tree, &refusalOf<std::string>, [](const Value&) {}, Absorbs::Failures);
  exhaust(
      {"json::Value::to<vector<Value>>"}, tree, &refusalOf<Array>, [](const Value&) {}, Absorbs::Failures);
  exhaust(
      {"json::Value::to<map<string, Value>>"}, [] { return Value("text"); }, &refusalOf<Object>,
      [](const Value&) {}, Absorbs::Failures);
}

TEST(TextWithoutMemory, IsParsedOrNot) {
  const auto text = serialize(tree());
  exhaust({"json::parse"}, [&] { return parse(text); });
  exhaust({"json::parse"},
          [] { return parse(R"({"a\u00e4 name that is long enough":"a text\n that is long enough"})"); });
}

TEST(TextWithoutMemory, IsRefusedAtItsOffsetOrNot) {
  exhaust(
      {"json::parse"},
      [] {
        try {
          parse(R"([1,"a text that is long enough for memory",{"name that is long enough": nil}])");
          return std::size_t{0};
        } catch (const parse_error& error) {
          return error.offset();
        }
      },
      Absorbs::Failures);
}

TEST(TextWithoutMemory, IsWrittenOrNot) {
  exhaust(
      {"json::serialize"}, tree, [](const Value& value) { return serialize(value); },
      [](const Value& value) { EXPECT_EQ(value, tree()); });
  exhaust(
      {"json::serialize"}, [] { return deep(100); }, [](const Value& value) { return serialize(value); });
}

TEST(TextWithoutMemory, KeepsWhatAStringIsAppendedTo) {
  exhaust(
      {"json::appendQuoted"}, [] { return std::string("before"); },
      [](std::string& out) {
        out.resize(6);  // a part of the string may be there already
        appendQuoted(out, "a text \n with \x01 escapes, \"and\" long enough for memory");
        return std::move(out);
      },
      [](const std::string& out) { EXPECT_TRUE(out.starts_with("before")); });
}

TEST(ReaderWithoutMemory, NeedsNone) {
  const std::string text =
      R"({"name":["text \u00e4",1.5e300,true,false,null,{"skipped":[1]}],"n":18446744073709551615})";
  exhaust({"json::Reader::Reader", "json::Reader::next", "json::Reader::equals", "json::Reader::number",
           "json::Reader::skip", "json::Reader::readScalar", "json::Reader::readOddString"},
          [&] {
            Reader reader(text);
            std::size_t seen = 0;
            for (; reader.next() != Token::End; ++seen) {
              if (reader.token() == Token::Error) return std::size_t{0};
              if (reader.equals("text ä")) seen += 100;
              if (reader.token() == Token::Number && reader.number().index() == 1) seen += 1000;
              if (reader.token() == Token::ObjectBegin && reader.depth() == 3) reader.skip();
            }
            return seen;
          });
}

TEST(ReaderWithoutMemory, LeavesTheTextThatItCannotReplace) {
  for (const auto* text : {R"("a text that is long enough for memory")",
                           R"("a text \n that has an escape and is long enough")"}) {
    exhaust(
        {"json::Reader::copyTo"}, [] { return std::string("as before"); },
        [&](std::string& out) {
          Reader reader(text);
          reader.next();
          reader.copyTo(out);
          return std::move(out);
        },
        [](const std::string& out) { EXPECT_EQ(out, "as before"); });
  }
}

}  // namespace
}  // namespace foundation::json
