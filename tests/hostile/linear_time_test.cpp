// SPDX-License-Identifier: Apache-2.0
// Texts so large that a reader which takes more than linear time would not be done before its test is given
// up.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>

#include "foundation/corvane/common/framing.hpp"
#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/corvane/common/session.hpp"
#include "foundation/corvane/common/uuid.hpp"
#include "foundation/corvane/inspect/DocumentKind.hpp"
#include "foundation/corvane/inspect/Offers.hpp"
#include "foundation/corvane/inspect/diagnose.hpp"
#include "foundation/json.hpp"
#include "tests/sanitizers.hpp"

namespace {

using namespace foundation::json;
using namespace foundation::corvane::common;
using namespace foundation::corvane::inspect;
using session::MessageProtocolConfig;
using session::MessageProtocolResolution;

// As many as it takes for more minutes of quadratic time than a test is given, however quick its steps are.
// Under a sanitizer it is what the readers do to the memory that counts.
#ifdef __OPTIMIZE__
constexpr std::size_t many = tests::isSanitized ? 50'000 : 1'000'000;
#else
constexpr std::size_t many = tests::isSanitized ? 50'000 : 500'000;
#endif

std::string times(std::size_t count, std::string_view piece) {
  std::string text;
  text.reserve(count * piece.size());
  for (std::size_t i = 0; i < count; ++i) text += piece;
  return text;
}

/// The pieces with commas between.
std::string list(std::size_t count, std::string_view piece) {
  auto text = times(count, std::string(piece) + ',');
  text.pop_back();
  return text;
}

/// Members with names of their own, the last name first.
std::string members(std::size_t count) {
  std::string text;
  for (auto i = count; i != 0; --i) text += '"' + std::to_string(i) + R"(":0,)";
  text.pop_back();
  return text;
}

constexpr std::string_view version = R"("version":{"major":2,"minor":1})";
constexpr std::string_view request = R"({"handling":"required","name":"f","value":"v"})";
constexpr std::string_view outcome = R"({"message":"v","name":"f","status":"success"})";

std::string config(const std::string& features) {
  return R"({"features":[)" + features + R"(],"name":"p",)" + std::string(version) + '}';
}

std::string resolution(const std::string& outcomes) {
  return R"({"name":"p","resolutions":[)" + outcomes + "]," + std::string(version) + '}';
}

std::string configs(const std::string& elements) {
  return R"({"protocolConfigs":[)" + elements + "]}";
}

std::string resolutions(const std::string& elements) {
  return R"({"protocolResolutions":[)" + elements + "]}";
}

std::string offers(const std::string& elements) {
  return R"({"protocolOffers":[)" + elements + R"(],"software":{"name":"s","version":"1"}})";
}

std::size_t countOfFindings(DocumentKind document, const std::string& text) {
  std::size_t count = 0;
  diagnose(document, text, [&](const Finding&) {
    ++count;
    return true;
  });
  return count;
}

std::size_t countOfTokens(const std::string& text) {
  Reader reader(text);
  std::size_t count = 0;
  while (reader.next() != Token::End && reader.token() != Token::Error) ++count;
  return reader.token() == Token::End ? count : 0;
}

// --- JSON values

TEST(LinearTime, IsWhatManyMembersTakeToBecomeAValueAndATextAgain) {
  const auto text = '{' + members(many) + '}';

  const auto value = parse(text);

  ASSERT_TRUE(value.is<Object>());
  EXPECT_EQ(value.find<Object>()->size(), many);
  EXPECT_EQ(parse(serialize(value)), value);
}

TEST(LinearTime, IsWhatManyMembersOfOneNameTake) {
  EXPECT_EQ(parse('{' + list(many, R"("name":[1])") + '}'), (Object{{"name", Array{1}}}));
}

TEST(LinearTime, IsWhatManyElementsTakeToBecomeAValueAndATextAgain) {
  const auto text = '[' + list(many, "[]") + ']';

  const auto value = parse(text);

  ASSERT_TRUE(value.is<Array>());
  EXPECT_EQ(value.find<Array>()->size(), many);
  EXPECT_EQ(serialize(value), text);
  EXPECT_EQ(Value(value), value);
}

TEST(LinearTime, IsWhatNestingTakes) {
  const auto deepest = times(126, "[") + times(126, "]");

  EXPECT_THROW(parse(times(many, "[")), parse_error);
  EXPECT_THROW(parse(times(many, R"({"a":)")), parse_error);
  EXPECT_EQ(parse('[' + list(many / 126, deepest) + ']').to<Array>().size(), many / 126);
  EXPECT_EQ(countOfTokens('[' + list(many / 126, deepest) + ']'), 2 + 252 * (many / 126));
}

TEST(LinearTime, IsWhatSkippingTakes) {
  const auto text = '[' + list(many, R"({"a":[1,"\u0061",{}]})") + ']';
  Reader reader(text);

  reader.next();

  EXPECT_TRUE(reader.skip());
  EXPECT_EQ(reader.next(), Token::End);
}

TEST(LinearTime, IsWhatLongNumbersTake) {
  const auto digits = times(10 * many, "7");
  const auto zeros = times(10 * many, "0");

  EXPECT_EQ(parse(digits), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parse("0." + digits), 7.0 / 9.0);
  EXPECT_EQ(parse("1e" + digits), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parse("1e-" + digits), 0.0);
  EXPECT_EQ(parse("0." + zeros + "1e" + std::to_string(10 * many + 1)), 1.0);
  EXPECT_EQ(parse('1' + zeros + "e-" + std::to_string(10 * many)), 1.0);
  EXPECT_EQ(parse('[' + list(many, "1.7976931348623157e308") + ']').to<Array>().size(), many);
}

TEST(LinearTime, IsWhatLongStringsTake) {
  const auto plain = times(many, "eleven byte");
  const auto escapes = times(many, R"(\ud83d\ude00)");
  const auto controls = std::string(10 * many, '\x01');

  EXPECT_EQ(parse('"' + plain + '"'), plain);
  EXPECT_EQ(parse('"' + escapes + '"'), times(many, "\xf0\x9f\x98\x80"));
  EXPECT_EQ(parse(serialize(controls)), controls);
  EXPECT_THROW(parse('"' + plain), parse_error);
  EXPECT_THROW(parse('"' + escapes + R"(\u12)"), parse_error);
}

TEST(LinearTime, IsWhatWhiteSpaceTakes) {
  const auto blanks = times(many, " \t\r\n");

  EXPECT_EQ(parse(blanks + '[' + blanks + ']' + blanks), Array());
  EXPECT_THROW(parse(blanks), parse_error);
}

// --- the documents

TEST(LinearTime, IsWhatManyRequestsTake) {
  EXPECT_EQ(session::toConfigs(configs(list(many, config("")))).size(), many);
  EXPECT_EQ(session::toConfigs(configs(list(many, "{}"))).size(), many);
  EXPECT_EQ(session::toConfigs(configs(config(list(many, request)))).at(0).features.size(), many);
  EXPECT_EQ(MessageProtocolConfig::toMessageProtocolConfig(config(list(many, request))).features.size(),
            many);
}

TEST(LinearTime, IsWhatManyAnswersTake) {
  EXPECT_EQ(session::toResolutions(resolutions(list(many, resolution("")))).size(), many);
  EXPECT_EQ(session::toResolutions(resolutions(list(many, "{}"))).size(), many);
  EXPECT_EQ(session::toResolutions(resolutions(resolution(list(many, outcome)))).at(0).resolutions.size(),
            many);
  EXPECT_EQ(MessageProtocolResolution::toMessageProtocolResolution(resolution(list(many, outcome)))
                .resolutions.size(),
            many);
}

TEST(LinearTime, IsWhatManyOffersTake) {
  EXPECT_EQ(toOffers(offers(list(many, R"({"features":[],"name":"p"})"))).protocols.size(), many);
  EXPECT_EQ(toOffers(offers(R"({"name":"p","features":[)" + list(many, request) + "]}"))
                .protocols.at(0)
                .features.size(),
            many);
}

TEST(LinearTime, IsWhatManyMembersOfOneNameTakeInADocument) {
  const auto versions = list(many, version);
  const auto lists = list(many, R"("features":[1,{}])");
  const auto names = list(many, R"("n\u0061me":"p")");

  const auto read = session::toConfigs(configs("{" + names + ',' + versions + ',' + lists + "}"));

  ASSERT_EQ(read.size(), 1U);
  EXPECT_EQ(read.at(0), MessageProtocolConfig("p", {2, 1}, {{}}));
  EXPECT_EQ(session::toConfigs('{' + list(many, R"("protocolConfigs":[{}])") + '}').size(), 1U);
  EXPECT_EQ(session::FeatureResolution::toFeatureResolution(
                '{' + list(many, R"("status":"success","name":"f")") + '}'),
            session::FeatureResolution("f", "", session::FeatureStatus::success));
  EXPECT_EQ(
      toOffers('{' + list(many, R"("software":{"name":"s"},"protocolOffers":[{}])") + '}').protocols.size(),
      1U);
}

TEST(LinearTime, IsWhatManyUnknownMembersTakeInADocument) {
  const auto unknown = members(many);

  EXPECT_EQ(session::toConfigs(configs("{" + unknown + R"(,"name":"p","version":{)" + unknown + "}}")).at(0),
            MessageProtocolConfig("p", {0, 0}, {}));
  EXPECT_EQ(documentKindOf('{' + unknown + R"(,"protocolOffers":0})"), DocumentKind::ProtocolOffers);
}

TEST(LinearTime, IsWhatLongTextsTakeInADocument) {
  const auto name = times(many, R"(\u0061bcdefghij)");
  const auto digits = times(10 * many, "3");
  const auto text =
      R"({"name":")" + name + R"(","version":{"major":0.)" + digits + R"(,"minor":)" + digits + "}}";

  EXPECT_EQ(MessageProtocolConfig::toMessageProtocolConfig(text), MessageProtocolConfig());
  EXPECT_EQ(
      MessageProtocolResolution::toMessageProtocolResolution(R"({"name":")" + name + R"(","version":{}})")
          .name,
      times(many, "abcdefghij"));
}

TEST(LinearTime, IsWhatNestingTakesInADocument) {
  const auto deep = R"({"a":)" + times(60, R"([{"a":)") + '0' + times(60, "}]") + '}';

  EXPECT_TRUE(session::toConfigs(configs(times(many, "["))).empty());
  EXPECT_TRUE(toOffers(times(many, R"({"protocolOffers":)")).protocols.empty());
  EXPECT_EQ(session::toResolutions(resolutions(list(many / 60, deep))).size(), many / 60);
}

// --- what is said of them

TEST(LinearTime, IsWhatManyFindingsTakeOnManyLines) {
  const auto configsText = configs(list(many, "\n{}"));

  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolConfigs, configsText), 2 * many);
  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolResolutions, resolutions(list(many, "\n7"))), many);
  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolOffers, offers(list(many, "\n{}"))), many);
}

TEST(LinearTime, IsWhatFindingsTakeOfMembersThatAreUnknownOrComeTwice) {
  const auto unknown = members(many);
  const auto versions = list(many, version);

  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolConfigs, '{' + unknown + R"(,"protocolConfigs":[]})"),
            many);
  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolConfigs,
                            configs(R"({"features":[],"name":"p",)" + versions + '}')),
            many - 1);
}

TEST(LinearTime, IsWhatFindingsTakeWithLongNamesAndLongNumbers) {
  const auto name = times(many, R"(\u0001~/bcdefghij)");
  const auto digits = times(10 * many, "3");
  const auto text = configs(R"({"features":[],"name":"p","version":{"major":0.)" + digits +
                            R"(,"minor":0},")" + name + R"(":0})");

  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolConfigs, text), 2U);
  EXPECT_EQ(countOfFindings(DocumentKind::ProtocolConfigs, times(many, "[\n")), 1U);
}

// --- short texts that are long

TEST(LinearTime, IsWhatALongTextTakesThatIsNoUuid) {
  for (const std::string_view piece : {"0", "-", "{", "0f1e2d3c-4b5a-4978-8695-a4b3c2d1e0ff"}) {
    EXPECT_THROW(uuid::toUUID(times(10 * many, piece)), std::runtime_error);
  }
}

TEST(LinearTime, IsWhatLongIdentifiersTake) {
  const auto blanks = times(10 * many, " ");
  const auto zeros = times(10 * many, "0");
  const auto digits = times(10 * many, "7");
  constexpr auto largest = std::numeric_limits<std::int64_t>::max();

  EXPECT_EQ(serialization::toID(blanks + '1' + blanks + '2'), session::IDType(1, 2));
  EXPECT_EQ(serialization::toID(zeros + "1 0x" + zeros + '2'), session::IDType(1, 2));
  EXPECT_EQ(serialization::toID(digits + ' ' + digits), session::IDType(largest, 0));
  EXPECT_EQ(framing::toMessageID(blanks + '1'), 1U);
  EXPECT_EQ(framing::toMessageID(zeros + '1'), 1U);
  EXPECT_EQ(framing::toMessageID(digits), std::numeric_limits<std::uint64_t>::max());
}

}  // namespace
