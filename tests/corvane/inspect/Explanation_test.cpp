// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Explanation.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/common/session/FeatureRequest.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect/simulateAnswer.hpp"
#include "foundation/json.hpp"
#include "tests/corvane/inspect/text/isUtf8.hpp"
#include "tests/sanitizers.hpp"

namespace foundation::corvane::inspect {
namespace {

using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureResolution;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;
using common::session::FeatureHandling::optional;
using common::session::FeatureHandling::preferred;
using common::session::FeatureHandling::required;
using common::session::FeatureStatus::success;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using Configs = std::vector<MessageProtocolConfig>;
using Resolutions = std::vector<MessageProtocolResolution>;

const Offers offers{
    "server",
    "2.1",
    {{"Telemetry", {{"compression", "lz4"}, {"compression", "zstd"}, {"batching", "on"}}}, {"Control", {}}}};

MessageProtocolConfig telemetry(const std::vector<FeatureRequest>& features) {
  return {"Telemetry", {2, 1}, features};
}

MessageProtocolResolution answered(const std::vector<FeatureResolution>& entries) {
  return {"Telemetry", {2, 1}, entries};
}

Explanation simulated(const Configs& configs) {
  return explain(configs, simulateAnswer(configs, offers), offers);
}

/// The only feature that is asked for, as a server with the offers answers it.
FeatureExplanation feature(const FeatureRequest& request) {
  return simulated({telemetry({request})}).protocols.at(0).features.at(0);
}

/// The only protocol that is asked for.
ProtocolExplanation protocol(const MessageProtocolConfig& config, const Resolutions& answer) {
  return explain({config}, answer).protocols.at(0);
}

TEST(explain, TellsWhatEachRequestCameTo) {
  const auto explanation =
      simulated({telemetry({{"compression", "zstd", required}}), {"Control", {1, 0}, {}}});

  const FeatureExplanation compression{
      "compression", "zstd", required, {"lz4", "zstd"}, FeatureOutcome::Accepted, success, "agreed as asked"};
  const ProtocolExplanation first{"Telemetry",          {2, 1},       {2, 1}, ProtocolOutcome::Agreed,
                                  "installed as asked", {compression}};
  const ProtocolExplanation second{"Control", {1, 0}, {1, 0}, ProtocolOutcome::Agreed, "installed as asked",
                                   {}};
  EXPECT_EQ(explanation, (Explanation{{first, second}, {}}));
  EXPECT_EQ(explain({}, {}), Explanation{});
}

// What a negotiation is silent about, and what is said of it here.

TEST(explain, TellsOfARequiredFeatureThatFailedThoughItsProtocolIsInstalled) {
  const auto gzip = feature({"compression", "gzip", required});
  const auto security = feature({"security", "tls", required});

  EXPECT_EQ(gzip.outcome, FeatureOutcome::ValueNotOffered);
  EXPECT_EQ(gzip.status, FeatureStatus::invalid_value_error);
  EXPECT_EQ(gzip.why, R"(required, and offered only as "lz4", "zstd")");
  EXPECT_EQ(security.outcome, FeatureOutcome::NotOffered);
  EXPECT_EQ(security.why,
            R"(required, but not offered by the server, which offers only "compression", "batching")");
}

TEST(explain, TellsOfAFeatureWithoutAKnownHandlingThatHasNoEntry) {
  const auto explanation = feature({"security", "tls", static_cast<FeatureHandling>(9)});

  EXPECT_EQ(explanation.outcome, FeatureOutcome::Unanswered);
  EXPECT_EQ(explanation.status, FeatureStatus::undefined);
  EXPECT_THAT(explanation.why, StartsWith("asked for without a known handling, so the server"));
}

TEST(explain, TellsOfARequestForAFeatureThatCouldNotBeRead) {
  EXPECT_THAT(feature({}).why, StartsWith("the request is empty, as one becomes that lacks a name"));
}

TEST(explain, TellsWhichOfTwoValuesThatAreBothOfferedCounts) {
  const auto explanation =
      simulated({telemetry({{"compression", "zstd", preferred}, {"compression", "lz4", optional}})});

  const auto& features = explanation.protocols.at(0).features;
  EXPECT_EQ(features.at(0).outcome, FeatureOutcome::Accepted);
  EXPECT_EQ(features.at(1).outcome, FeatureOutcome::Overruled);
  EXPECT_EQ(features.at(1).status, success);
  EXPECT_THAT(features.at(1).why, StartsWith(R"(agreed, but "zstd" counts, which was agreed before;)"));
}

TEST(explain, TellsThatTheFirstConfigurationOfAProtocolStaysInForce) {
  const auto explanation =
      simulated({telemetry({{"compression", "lz4", optional}}), telemetry({{"compression", "lz4", required},
                                                                           {"compression", "zstd", required},
                                                                           {"batching", "on", required}})});

  const auto& features = explanation.protocols.at(1).features;
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Agreed);
  EXPECT_EQ(features.at(0).outcome, FeatureOutcome::Accepted);
  EXPECT_EQ(features.at(1).outcome, FeatureOutcome::Ineffective);
  EXPECT_THAT(features.at(1).why, HasSubstr(R"(the first one counts, and has "lz4";)"));
  EXPECT_EQ(features.at(2).outcome, FeatureOutcome::Ineffective);
  EXPECT_THAT(features.at(2).why, HasSubstr("the first one counts, and does not have this feature;"));
}

TEST(explain, TellsThatASecondVersionOfAProtocolEndsTheNegotiation) {
  const auto explanation = simulated({telemetry({}), {"Telemetry", {2, 0}, {{"batching", "on", required}}}});

  const auto& lost = explanation.protocols.at(1);
  EXPECT_EQ(lost.outcome, ProtocolOutcome::VersionConflict);
  EXPECT_EQ(lost.answered, undefinedVersion);
  EXPECT_EQ(
      lost.why,
      "asked for at 2.0, but installed at 2.1 before: a server of this library throws std::logic_error "
      "\"Incompatible message protocol versions requested\" here, and its whole answer is lost; ask for one "
      "version");
  EXPECT_EQ(lost.features.at(0).outcome, FeatureOutcome::ProtocolLost);
  EXPECT_EQ(lost.features.at(0).why, "required, and lost with the protocol");
}

TEST(explain, SaysOfWhatWasAgreedThatASecondVersionMakesItComeToNothing) {
  const Configs configs{{"Control", {1, 0}, {}},
                        telemetry({{"compression", "zstd", required}, {"security", "tls", optional}}),
                        {"Telemetry", {2, 0}, {}}};

  const auto explanation = simulated(configs);

  const std::string end =
      "; but it comes to nothing: at the request for \"Telemetry\" at 2.0 a server of this library ends the "
      "negotiation with an exception";
  const auto& telemetries = explanation.protocols.at(1);
  EXPECT_EQ(explanation.protocols.at(0).why, "installed as asked" + end);
  EXPECT_EQ(telemetries.why, "installed as asked" + end);
  EXPECT_EQ(telemetries.features.at(0).why, "agreed as asked" + end);
  EXPECT_THAT(telemetries.features.at(1).why, Not(HasSubstr("comes to nothing")));
  EXPECT_THAT(explanation.protocols.at(2).why, Not(HasSubstr("comes to nothing")));
}

TEST(explain, SaysOfWhatWasAgreedThatAContradictoryAnswerMakesItComeToNothing) {
  const auto explanation = explain({{"Control", {1, 0}, {}}, telemetry({})},
                                   {{"Control", {1, 0}, {}}, answered({}), {"Telemetry", {3, 0}, {}}});

  const std::string end =
      "; but it comes to nothing: at the answer for \"Telemetry\" at 3.0 the client ends the negotiation "
      "with "
      "an exception";
  EXPECT_EQ(explanation.protocols.at(0).why, "installed as asked" + end);
  EXPECT_EQ(explanation.protocols.at(1).why, "installed as asked" + end);
}

TEST(explain, TakesRequestsAsTheServerHasReadThem) {
  const Configs configs{{"", {1, 0}, {}}, {"Telemetry", {65535, 3}, {}}, telemetry({{"batching", "on"}})};
  const auto read = common::session::toConfigs(common::session::toJSON(configs));

  const auto handedIn = simulated(configs).protocols;
  const auto onTheWire = simulated(read).protocols;

  EXPECT_EQ(handedIn.at(0).outcome, ProtocolOutcome::NotOffered);
  EXPECT_EQ(onTheWire.at(0).outcome, ProtocolOutcome::Unreadable);
  EXPECT_EQ(handedIn.at(1).outcome, ProtocolOutcome::Agreed);
  EXPECT_EQ(onTheWire.at(1).outcome, ProtocolOutcome::Unreadable);
  EXPECT_EQ(onTheWire.at(2).features.at(0).outcome, FeatureOutcome::Unanswered);
}

TEST(explain, SuspectsASecondVersionWhereThereIsNoAnswerAtAll) {
  const Configs configs{telemetry({}), {"Telemetry", {2, 0}, {}}};

  const auto suspicion = HasSubstr("asked for at several versions");
  EXPECT_THAT(explain(configs, {}).protocols.at(0).why, suspicion);
  EXPECT_THAT(explain(configs, {}, offers).protocols.at(1).why, suspicion);
  EXPECT_THAT(explain(configs, {{"Control", {1, 0}, {}}}).protocols.at(0).why, Not(suspicion));
  EXPECT_THAT(explain({telemetry({})}, {}).protocols.at(0).why, Not(suspicion));
}

TEST(explain, TellsOfARequestThatWasDroppedForItHasNoVersion) {
  const auto explanation = simulated({{"Telemetry", undefinedVersion, {}}, {}});

  EXPECT_EQ(explanation.protocols.at(0).outcome, ProtocolOutcome::RequestWithoutVersion);
  EXPECT_THAT(explanation.protocols.at(0).why, StartsWith("asked for without a version"));
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Unreadable);
  EXPECT_THAT(explanation.protocols.at(1).why, EndsWith("diagnose the requests' document"));
}

TEST(explain, TellsAnUnknownProtocolFromADeclinedOne) {
  const Configs configs{{"Chat", {1, 0}, {}}, telemetry({})};

  const auto known = explain(configs, {}, offers);
  const auto unknown = explain(configs, {});

  EXPECT_EQ(known.protocols.at(0).outcome, ProtocolOutcome::NotOffered);
  EXPECT_EQ(known.protocols.at(0).why,
            R"(not offered by the server, which offers only "Telemetry", "Control")");
  EXPECT_EQ(known.protocols.at(1).outcome, ProtocolOutcome::Declined);
  EXPECT_EQ(known.protocols.at(1).why,
            "offered by the server, but not installed: its initializer declined 2.1 with the features "
            "agreed, or is "
            "empty");
  EXPECT_EQ(unknown.protocols.at(1).outcome, ProtocolOutcome::NotOfferedOrDeclined);
  EXPECT_EQ(explain(configs, {}, Offers{}).protocols.at(0).why,
            "not offered by the server, which offers no protocol at all");
}

TEST(explain, TellsThatAProtocolIsInstalledAtAnotherVersion) {
  const auto older = protocol(telemetry({}), {{"Telemetry", {2, 0}, {}}});
  const auto newer = protocol(telemetry({}), {{"Telemetry", {10, 0}, {}}});

  EXPECT_EQ(older.outcome, ProtocolOutcome::OlderVersion);
  EXPECT_EQ(older.answered, std::pair(2U, 0U));
  EXPECT_EQ(older.why, "installed at 2.0, which is older than 2.1, as the server's initializer chose");
  EXPECT_EQ(newer.outcome, ProtocolOutcome::NewerVersion);
}

TEST(explain, TellsOfSuccessesThatNobodyAskedFor) {
  const auto explanation = explain({telemetry({{"compression", "zstd", required}})},
                                   {{"Chat", {1, 0}, {{"x", "1", success}}},
                                    answered({{"compression", "lz4", success},
                                              {"compression", "zstd", success},
                                              {"batching", "on", success},
                                              {"security", "tls", FeatureStatus::unsupported_error}}),
                                    {}});

  EXPECT_EQ(explanation.protocols.at(0).features.at(0).outcome, FeatureOutcome::Overruled);
  const std::string installed = "nobody asked for it, but the client installs the protocol with it";
  EXPECT_THAT(
      explanation.unasked,
      ElementsAre(UnaskedAnswer{"Chat",
                                {1, 0},
                                false,
                                "",
                                "",
                                {},
                                "nobody asked for it, but the client installs it if it knows it"},
                  UnaskedAnswer{"Telemetry", {2, 1}, true, "compression", "lz4", success, installed},
                  UnaskedAnswer{"Telemetry", {2, 1}, true, "batching", "on", success, installed},
                  UnaskedAnswer{"Telemetry",
                                {2, 1},
                                true,
                                "security",
                                "tls",
                                FeatureStatus::unsupported_error,
                                "nobody asked for it; it changes nothing"},
                  testing::Field(&UnaskedAnswer::why,
                                 StartsWith("the answer is empty, as one becomes that could not be"))));
}

// What no server of this library answers.

TEST(explain, TellsOfAnAnswerWithoutAVersion) {
  const auto lost =
      protocol(telemetry({{"x", "1", required}}), {{"Telemetry", undefinedVersion, {{"x", "1", success}}}});

  EXPECT_EQ(lost.outcome, ProtocolOutcome::AnswerWithoutVersion);
  EXPECT_EQ(lost.answered, undefinedVersion);
  EXPECT_EQ(lost.features.at(0).outcome, FeatureOutcome::ProtocolLost);
  EXPECT_EQ(lost.features.at(0).status, success);
}

TEST(explain, LetsTheFirstAnswerThatHasAVersionCount) {
  const Configs configs{telemetry({{"x", "1", required}}), telemetry({{"x", "2", required}})};

  const auto explanation = explain(
      configs, {{"Telemetry", undefinedVersion, {{"x", "1", success}}}, answered({{"x", "2", success}})});

  EXPECT_EQ(explanation.protocols.at(0).outcome, ProtocolOutcome::AnswerWithoutVersion);
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Agreed);
  EXPECT_EQ(explanation.protocols.at(1).features.at(0).outcome, FeatureOutcome::Accepted);
}

TEST(explain, TakesASecondVersionThatIsAnsweredWithTheInstalledOneForInstalled) {
  const auto explanation = explain({telemetry({}), {"Telemetry", {2, 0}, {}}}, {answered({}), answered({})});

  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::NewerVersion);
  EXPECT_EQ(explanation.protocols.at(1).answered, std::pair(2U, 1U));
}

TEST(explain, TellsOfInvalidHandlingsAndOfEntriesThatAreMissing) {
  const auto answer = protocol(
      telemetry({{"x", "1", required}, {"y", "1", required}, {"z", "1", required}}),
      {answered({{"x", "1", FeatureStatus::invalid_handling}, {"z", "1", static_cast<FeatureStatus>(9)}})});

  EXPECT_EQ(answer.features.at(0).outcome, FeatureOutcome::InvalidHandling);
  EXPECT_EQ(answer.features.at(1).outcome, FeatureOutcome::Unanswered);
  EXPECT_THAT(answer.features.at(1).why, StartsWith("required, but the answer says nothing of it"));
  EXPECT_EQ(answer.features.at(2).outcome, FeatureOutcome::Unanswered);
  EXPECT_THAT(answer.features.at(2).why, StartsWith("required, and answered without a known status"));
}

TEST(explain, TellsOfAnswersThatContradictThemselves) {
  const auto explanation =
      explain({telemetry({{"x", "1", optional}}), telemetry({})},
              {answered({{"x", "1", FeatureStatus::unsupported_warning}, {"x", "1", success}}),
               {"Telemetry", {3, 0}, {}}});

  const auto& x = explanation.protocols.at(0).features.at(0);
  EXPECT_EQ(x.outcome, FeatureOutcome::Accepted);
  EXPECT_EQ(x.status, FeatureStatus::unsupported_warning);
  EXPECT_THAT(x.why, HasSubstr("the answer contradicts itself"));
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::NewerVersion);
  EXPECT_THAT(explanation.protocols.at(1).why,
              HasSubstr("but an earlier answer has 2.1, and the client throws"));
}

TEST(explain, LetsTheAnswerCountWhereTheOffersHaveChangedSince) {
  const Configs configs{telemetry({{"compression", "gzip", required}, {"batching", "on", required}}),
                        {"Chat", {1, 0}, {{"x", "1", optional}}}};
  const Resolutions answer{
      answered({{"compression", "gzip", success}, {"batching", "on", FeatureStatus::unsupported_error}}),
      {"Chat", {1, 0}, {{"x", "1", success}}}};

  const auto explanation = explain(configs, answer, offers);

  const auto& features = explanation.protocols.at(0).features;
  EXPECT_EQ(features.at(0).outcome, FeatureOutcome::Accepted);
  EXPECT_EQ(
      features.at(0).why,
      R"(agreed as asked; by the offers at hand it is offered only as "lz4", "zstd": the server has changed since)");
  EXPECT_EQ(features.at(1).outcome, FeatureOutcome::NotOffered);
  EXPECT_EQ(features.at(1).why,
            "required, but not offered by the server; by the offers at hand it is offered with this value: "
            "the server "
            "has changed since");
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Agreed);
  EXPECT_THAT(explanation.protocols.at(1).why,
              EndsWith("do not have the protocol: the server has changed since"));
}

// Which answer answers which request.

TEST(explain, GivesAnAnswerToTheRequestThatItFits) {
  const auto explanation = explain({telemetry({{"x", "1", required}}), telemetry({{"y", "1", required}})},
                                   {answered({{"x", "1", success}})});

  EXPECT_EQ(explanation.protocols.at(0).outcome, ProtocolOutcome::Agreed);
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Declined);
}

TEST(explain, TakesTheEarlierOfTwoEqualRequestsForTheDeclinedOne) {
  const auto explanation = explain({telemetry({}), {"Telemetry", {1, 0}, {}}}, {{"Telemetry", {1, 0}, {}}});

  EXPECT_EQ(explanation.protocols.at(0).outcome, ProtocolOutcome::Declined);
  EXPECT_THAT(explanation.protocols.at(0).why, HasSubstr("which has the protocol for another request"));
  EXPECT_EQ(explanation.protocols.at(1).outcome, ProtocolOutcome::Agreed);
}

TEST(explain, SharesTheEntriesOfOneValueAmongTheRequestsForIt) {
  const auto shared = explain({telemetry({{"x", "1", optional}, {"x", "1", required}})},
                              {answered({5, {"x", "1", success}})});
  const auto scarce = protocol(telemetry({{"x", "1", {}}, {"x", "1", required}}),
                               {answered({{"x", "1", FeatureStatus::unsupported_error}})});

  EXPECT_THAT(shared.unasked, SizeIs(1));
  EXPECT_EQ(scarce.features.at(0).outcome, FeatureOutcome::Unanswered);
  EXPECT_EQ(scarce.features.at(1).outcome, FeatureOutcome::NotOffered);
}

TEST(explain, IsNotSlowedDownByManyEqualNamesAndValues) {
  constexpr std::size_t many = tests::isSanitized ? 20'000 : 50'000;
  const Configs narrow(many, telemetry({{"compression", "1", optional}}));
  const Configs wide{telemetry({many, {"compression", "1", optional}})};
  Offers manyValues{"", "", {{"Telemetry", {}}}};
  for (std::size_t i = 0; i < many; ++i) {
    manyValues.protocols.front().features.push_back({"compression", std::to_string(i)});
  }
  const auto wideAnswer = answered({many, {"compression", "1", success}});
  const auto narrowAnswer = answered({{"compression", "1", success}});

  EXPECT_THAT(explain(narrow, Resolutions(many, narrowAnswer), manyValues).unasked, IsEmpty());
  EXPECT_THAT(explain(narrow, {wideAnswer}, manyValues).protocols, SizeIs(many));
  EXPECT_THAT(explain(wide, {wideAnswer}, manyValues).unasked, IsEmpty());
  EXPECT_THAT(explain(wide, Resolutions(many, narrowAnswer), manyValues).unasked, SizeIs(many - 1));
  EXPECT_THAT(explain(narrow, Resolutions(many / 2, narrowAnswer)).protocols, SizeIs(many));
}

// What may have been meant.

TEST(explain, GuessesAtMisspellings) {
  EXPECT_EQ(feature({"compresion", "zstd", required}).why,
            R"(required, but not offered by the server; "compresion" may be a misspelling of "compression")");
  EXPECT_THAT(feature({"compression", " ZSTD", required}).why,
              EndsWith(R"("lz4", "zstd"; " ZSTD" may be a misspelling of "zstd")"));
  EXPECT_THAT(simulated({{"Telemerty", {1, 0}, {}}}).protocols.at(0).why,
              EndsWith(R"("Telemerty" may be a misspelling of "Telemetry")"));
}

TEST(explain, DoesNotGuessWhereTheDifferenceIsMeant) {
  const auto guess = HasSubstr("misspelling");
  EXPECT_THAT(feature({"compression", "lz5", required}).why, Not(guess));
  EXPECT_THAT(feature({"batching", "an", required}).why, Not(guess));
  EXPECT_THAT(feature({"decompression", "lz4", required}).why, Not(guess));
  EXPECT_THAT(feature({std::string(100, 'c') + "compression", "lz4", required}).why, Not(guess));
}

TEST(explain, ListsManyValuesShortly) {
  Offers many{"", "", {{"Telemetry", {}}}};
  for (int i = 0; i < 40; ++i)
    many.protocols.front().features.push_back({"level", std::to_string(i / 2 * 2)});
  many.protocols.front().features.insert(many.protocols.front().features.end(), 20, {"depth", "1"});
  for (int i = 0; i < 40; ++i) many.protocols.front().features.push_back({"depth", std::to_string(i)});
  const Configs configs{telemetry({{"level", "1", required}, {"depth", "x", required}})};

  const auto explanation = explain(configs, simulateAnswer(configs, many), many);

  const auto& features = explanation.protocols.at(0).features;
  EXPECT_THAT(features.at(0).offered, SizeIs(20));
  EXPECT_EQ(features.at(0).why, R"(required, and offered only as "0", "2", "4", "6", "8" and 15 more)");
  EXPECT_THAT(features.at(1).offered, SizeIs(32));
  EXPECT_THAT(features.at(1).why, EndsWith(R"("1", "0", "2", "3", "4" and 35 more)"));
}

// Texts.

TEST(toText, WritesALineForEachRequestAndForWhatNobodyAskedFor) {
  const Configs configs{telemetry({{"compression", "gzip", required}, {"batching", "on", {}}}),
                        {"Chat", {1, 0}, {}}};
  auto answer = simulateAnswer(configs, offers);
  answer.emplace_back("Ghost", std::pair(1U, 2U), std::vector<FeatureResolution>{});

  EXPECT_EQ(toText(explain(configs, answer, offers)),
            R"(protocol   feature      asked  strength   offered    outcome          why
Telemetry               2.1               2.1        Agreed           installed as asked
Telemetry  compression  gzip   required   lz4, zstd  ValueNotOffered  required, and offered only as "lz4", "zstd"
Telemetry  batching     on     undefined  on         Accepted         agreed as asked
Chat                    1.0                          NotOffered       not offered by the server, which offers only "Telemetry", "Control"
Ghost                                     1.2        unasked          nobody asked for it, but the client installs it if it knows it
)");
}

TEST(toText, SaysThatThereIsNothing) {
  EXPECT_EQ(toText({}), "No protocol was asked for, and the answer has none.\n");
}

TEST(toText, CountsCharactersAndPadsNoColumnBeyondForty) {
  Explanation explanation;
  for (const auto* name : {"Größe", "x"}) explanation.protocols.push_back({name, {1, 0}, {}, {}, "why", {}});
  explanation.protocols.push_back({std::string(60, 'n'), {1, 0}, {}, {}, "why", {}});

  const auto text = toText(explanation);

  const auto padded = [](std::size_t n) { return std::string(n, ' ') + "         1.0"; };
  EXPECT_THAT(text, HasSubstr("\nGröße" + padded(37)));
  EXPECT_THAT(text, HasSubstr("\nx" + padded(41)));
  EXPECT_THAT(text, HasSubstr('\n' + std::string(60, 'n') + padded(2)));
  EXPECT_THAT(text, Not(HasSubstr(" \n")));
}

TEST(toText, WritesControlCharactersAsEscapesAndShowsEmptyTexts) {
  const std::string csi = "\xc2\x9b";
  Explanation explanation;
  explanation.protocols.push_back(
      {"a\n\x1b[2J\x7f" + csi + "5m\\\xc3\xa9\xc2\xa0", undefinedVersion, {}, {}, "why", {}});
  explanation.protocols.back().features.push_back({"", " \"\r", {}, {"", "\t"}, {}, {}, "why"});

  const auto text = toText(explanation, Colour::Off);

  EXPECT_THAT(text, HasSubstr("a\\n\\x1b[2J\\x7f\\u009b5m\\\\\xc3\xa9\xc2\xa0 "));
  EXPECT_THAT(text, HasSubstr(R"( "" )"));
  EXPECT_THAT(text, HasSubstr(R"( " \"\r" )"));
  EXPECT_THAT(text, HasSubstr(R"( "", \t )"));
  EXPECT_THAT(text, HasSubstr(" none "));
  EXPECT_TRUE(
      std::ranges::none_of(text, [](unsigned char c) { return c != '\n' && (c < ' ' || c == 0x7f); }));
}

TEST(toText, ColoursOutcomesOnRequestOnly) {
  const Configs configs{telemetry({{"compression", "lz4", required},
                                   {"compression", "gzip", required},
                                   {"security", "tls", optional}}),
                        {"Chat", {1, 0}, {}},
                        {"Control", {1, 1}, {{"x", "1", optional}}}};
  auto answer = simulateAnswer(configs, offers);
  answer.at(1).version = {1, 0};
  answer.emplace_back("Ghost", std::pair(1U, 2U), std::vector<FeatureResolution>{});
  const auto explanation = explain(configs, answer, offers);

  const auto coloured = toText(explanation, Colour::On);

  const auto in = [](const std::string& colour, const std::string& word) {
    return HasSubstr("  \x1b[" + colour + 'm' + word + "\x1b[0m ");
  };
  EXPECT_THAT(coloured, AllOf(in("32", "Agreed"), in("32", "Accepted"), in("31", "ValueNotOffered"),
                              in("33", "NotOffered"), in("31", "NotOffered"), in("33", "OlderVersion"),
                              in("33", "unasked")));
  std::string plain;
  for (std::size_t at = 0; at < coloured.size(); ++at) {
    if (coloured[at] == '\x1b')
      at = coloured.find('m', at);
    else
      plain += coloured[at];
  }
  EXPECT_EQ(toText(explanation), plain);
}

TEST(toText, ColoursNothingGreenBesideASecondVersion) {
  const auto explanation =
      simulated({telemetry({{"compression", "lz4", required}}), {"Telemetry", {2, 0}, {}}});

  const auto text = toText(explanation, Colour::On);

  EXPECT_THAT(text,
              AllOf(HasSubstr("\x1b[31mAgreed"), HasSubstr("\x1b[31mAccepted"), Not(HasSubstr("\x1b[32m"))));
}

TEST(writeText, HandsOutTheLinesOfTheText) {
  const auto explanation = simulated({telemetry({{"compression", "lz4", required}}), {"Chat", {1, 0}, {}}});

  std::string text;
  writeText(explanation, Colour::On, [&](std::string_view line) {
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    text += line;
  });

  EXPECT_EQ(text, toText(explanation, Colour::On));
}

TEST(writeJSON, HandsOutTheObjectInPieces) {
  Explanation explanation;
  explanation.protocols.resize(100);
  explanation.protocols.front().features.resize(100);
  explanation.unasked.resize(100);
  const auto whole = toJSON(explanation);

  std::string text;
  writeJSON(explanation, [&](std::string_view piece) {
    EXPECT_LT(piece.size(), whole.size() / 50);
    text += piece;
  });

  EXPECT_EQ(text, whole);
}

TEST(toJSON, WritesAnExplanationAsOneObject) {
  const Configs configs{telemetry({{"compression", "gzip", required}}), {"Chat", {1, 0}, {}}};
  auto answer = simulateAnswer(configs, offers);
  answer.at(0).resolutions.emplace_back("x\n", "1", success);

  EXPECT_EQ(
      toJSON(explain(configs, answer, offers)),
      R"({"protocols":[{"answered":{"major":2,"minor":1},"asked":{"major":2,"minor":1},"features":[)"
      R"({"handling":"required","name":"compression","offered":["lz4","zstd"],"outcome":"ValueNotOffered",)"
      R"("status":"invalid_value_error","value":"gzip","why":"required, and offered only as \"lz4\", \"zstd\""}],)"
      R"("name":"Telemetry","outcome":"Agreed","why":"installed as asked"},)"
      R"({"answered":null,"asked":{"major":1,"minor":0},"features":[],"name":"Chat","outcome":"NotOffered",)"
      R"("why":"not offered by the server, which offers only \"Telemetry\", \"Control\""}],)"
      R"("unasked":[{"feature":"x\n","isFeature":true,"protocol":"Telemetry","status":"success","value":"1",)"
      R"("version":{"major":2,"minor":1},"why":"nobody asked for it, but the client installs the protocol with it"}]})");
  EXPECT_EQ(toJSON(Explanation{}), R"({"protocols":[],"unasked":[]})");
}

TEST(toJSON, WritesWhatAnyReaderOfJsonReads) {
  Explanation explanation;
  explanation.protocols.push_back({"\x01\"\\", {4294967295U, 0}, {}, {}, "\n", {}});
  explanation.protocols.back().features.resize(2);

  const auto value = json::parse(toJSON(explanation));

  EXPECT_EQ(json::serialize(value), toJSON(explanation));
}

TEST(toJSON, IsUtf8WhateverTheTextsAre) {
  // Each with what is read of it: bytes that begin nothing, what is longer than need be, surrogates, what is
  // beyond the last character, what is cut short; and the first and the last character of each length.
  const std::vector<std::pair<std::string, std::string>> cases{
      {"\x80", "\ufffd"},
      {"\xff\xfe", "\ufffd\ufffd"},
      {"\xc0\xaf", "\ufffd\ufffd"},
      {"\xc1\xbf", "\ufffd\ufffd"},
      {"\xe0\x9f\xbf", "\ufffd\ufffd\ufffd"},
      {"\xed\xa0\x80", "\ufffd\ufffd\ufffd"},
      {"\xf0\x8f\xbf\xbf", "\ufffd\ufffd\ufffd\ufffd"},
      {"\xf4\x90\x80\x80", "\ufffd\ufffd\ufffd\ufffd"},
      {"\xf5\x80", "\ufffd\ufffd"},
      {"\xc3", "\ufffd"},
      {"\xe2\x82", "\ufffd"},
      {"\xf0\x9f\x98", "\ufffd"},
      {"\xe2\x82x\xc3y", "\ufffdx\ufffdy"},
      {"\x7f\xc2\x80\xdf\xbf", "\x7f\xc2\x80\xdf\xbf"},
      {"\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf",
       "\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf"},
      {"\xf0\x90\x80\x80\xf4\x8f\xbf\xbf", "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
  };
  for (const auto& [text, read] : cases) {
    const Configs configs{{text, {1, 0}, {{text, text, required}}}};
    const Resolutions answer{{text + text, {1, 0}, {{text, text, success}}}};
    const Offers theirs{"", "", {{text, {{text, text + "x"}}}}};

    const auto json = toJSON(explain(configs, answer, theirs));

    EXPECT_TRUE(isUtf8(json)) << testing::PrintToString(json);
    EXPECT_THAT(json, HasSubstr("\"name\":\"" + read + '"'));
    EXPECT_THAT(json, HasSubstr("\"value\":\"" + read + '"'));
    EXPECT_THAT(json, HasSubstr("\"offered\":[\"" + read + "x\"]"));
  }
}

TEST(FeatureOutcome, HasItsEnumeratorsName) {
  std::vector<std::string> names;
  for (int i = 0; i <= 8; ++i) names.emplace_back(toCString(static_cast<FeatureOutcome>(i)));
  EXPECT_THAT(names, ElementsAre("Accepted", "Overruled", "Ineffective", "NotOffered", "ValueNotOffered",
                                 "InvalidHandling", "Unanswered", "ProtocolLost", ""));
}

TEST(ProtocolOutcome, HasItsEnumeratorsName) {
  std::vector<std::string> names;
  for (int i = 0; i <= 10; ++i) names.emplace_back(toCString(static_cast<ProtocolOutcome>(i)));
  EXPECT_THAT(names, ElementsAre("Agreed", "OlderVersion", "NewerVersion", "RequestWithoutVersion",
                                 "Unreadable", "NotOffered", "Declined", "NotOfferedOrDeclined",
                                 "VersionConflict", "AnswerWithoutVersion", ""));
}

}  // namespace
}  // namespace foundation::corvane::inspect
