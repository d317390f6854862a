// SPDX-License-Identifier: Apache-2.0
// Who knows where a reader stands takes a step of his own instead of `next`, and must find the same.
#include "foundation/json/internal/InlineReader.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <variant>
#include <vector>

namespace foundation::json {
namespace {

using Steps = impl::InlineReader;

const std::string text =
    R"({ "name":"x","n\u0061me":1,"name" :[1,-2.5e3,"\ud83d\ude00",{},[ ]], "names":{"name":{"nam":null},)"
    "\"name\":\n        \t true},\"na\":[{\"name\":false}],\"\":12345678901234567890,\"name\":0.125 } ";

// The step for the place behind `token`; `containers` are the open ones, true for an object.
Token step(Reader& reader, const std::vector<bool>& containers) {
  if (reader.token() == Token::Key) return Steps::nextValue(reader);
  if (containers.empty()) return reader.next();
  if (!containers.back()) return Steps::nextElement(reader);
  const char* const ahead = Steps::keyAhead(reader);
  if (ahead != nullptr && Steps::readKeyAhead(reader, ahead, "name")) return Token::Key;
  return Steps::nextKey(reader);
}

void expectStepsLikeNext(const std::string& document) {
  Reader stepping(document);
  Reader walking(document);
  std::vector<bool> containers;
  ASSERT_EQ(Steps::nextValueOfText(stepping), walking.next()) << document;
  for (;;) {
    const auto token = walking.token();
    ASSERT_EQ(stepping.token(), token) << document;
    ASSERT_EQ(stepping.offset(), walking.offset()) << document;
    ASSERT_EQ(stepping.depth(), walking.depth()) << document;
    ASSERT_EQ(stepping.raw(), walking.raw()) << document;
    ASSERT_EQ(stepping.number(), walking.number()) << document;
    for (const auto* name : {"name", "x", "", "\xf0\x9f\x98\x80"}) {
      ASSERT_EQ(Steps::equals(stepping, name), walking.equals(name)) << document;
    }
    std::string copied = "before";
    std::string expected = "before";
    Steps::copyTo(stepping, copied);
    walking.copyTo(expected);
    ASSERT_EQ(copied, expected) << document;
    if (token == Token::Number) {
      const auto number = std::visit([](auto exact) { return static_cast<double>(exact); }, walking.number());
      ASSERT_EQ(Steps::number(stepping), number) << document;
    }
    if (token == Token::End || token == Token::Error) return;
    if (token == Token::ObjectBegin || token == Token::ArrayBegin)
      containers.push_back(token == Token::ObjectBegin);
    if (token == Token::ObjectEnd || token == Token::ArrayEnd) containers.pop_back();
    step(stepping, containers);
    walking.next();
  }
}

TEST(InlineReader, FindsWhatNextFinds) {
  expectStepsLikeNext(text);
}

TEST(InlineReader, FindsWhatNextFindsWhereTheTextEndsTooEarly) {
  for (std::size_t size = 0; size < text.size(); ++size) expectStepsLikeNext(text.substr(0, size));
}

TEST(InlineReader, FindsTheFaultThatNextFinds) {
  std::mt19937_64 random(1);
  const std::string bytes = "{}[],:\"\\ \nna0-.e";
  for (int round = 0; round < 20000; ++round) {
    auto broken = text;
    for (auto count = 1 + random() % 3; count > 0; --count) {
      const auto place = random() % broken.size();
      if (random() % 3 == 0) {
        broken.erase(place, 1);
      } else {
        broken.insert(place, 1,
                      random() % 8 == 0 ? static_cast<char>(random()) : bytes[random() % bytes.size()]);
      }
    }
    expectStepsLikeNext(broken);
  }
}

TEST(InlineReader, StaysAtAFault) {
  Reader reader("{]");
  reader.next();
  reader.next();
  const auto offset = reader.offset();

  EXPECT_EQ(Steps::keyAhead(reader), nullptr);
  EXPECT_EQ(Steps::nextKey(reader), Token::Error);
  EXPECT_EQ(Steps::nextElement(reader), Token::Error);
  Steps::skip(reader);

  EXPECT_EQ(reader.token(), Token::Error);
  EXPECT_EQ(reader.offset(), offset);
}

}  // namespace
}  // namespace foundation::json
