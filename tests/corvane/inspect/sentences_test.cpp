// SPDX-License-Identifier: Apache-2.0
// What people are told, word for word: whoever searches a log for a sentence finds it again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "foundation/corvane/inspect.hpp"

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
using common::session::FeatureHandling::required;
using common::session::FeatureStatus::invalid_value_error;
using common::session::FeatureStatus::success;
using common::session::FeatureStatus::unsupported_error;
using testing::ElementsAre;
using testing::SizeIs;

using Configs = std::vector<MessageProtocolConfig>;
using Resolutions = std::vector<MessageProtocolResolution>;
using Features = std::vector<FeatureRequest>;
using Entries = std::vector<FeatureResolution>;

const std::string throws = "throws std::logic_error \"Incompatible message protocol versions requested\"";

const Offers offers{"server", "2.1", {{"Telemetry", {{"codec", "lz4"}, {"codec", "zstd"}, {"mode", "on"}}}}};

MessageProtocolConfig asked(const Features& features, const std::pair<unsigned, unsigned>& version = {2, 1}) {
  return {"Telemetry", version, features};
}

MessageProtocolResolution answered(const Entries& entries,
                                   const std::pair<unsigned, unsigned>& version = {2, 1}) {
  return {"Telemetry", version, entries};
}

// Of the last protocol that is asked for.
std::string ofProtocol(const Explanation& explanation) {
  return explanation.protocols.back().why;
}

// Of the last feature of that protocol.
std::string ofFeature(const Explanation& explanation) {
  return explanation.protocols.back().features.back().why;
}

std::vector<std::string> ofUnasked(const Explanation& explanation) {
  std::vector<std::string> sentences;
  for (const auto& unasked : explanation.unasked) sentences.push_back(unasked.why);
  return sentences;
}

std::vector<std::string> ofReasons(const Judgement& judgement) {
  std::vector<std::string> sentences;
  for (const auto& reason : judgement.reasons) sentences.push_back(reason.sentence);
  return sentences;
}

TEST(Sentences, OfAProtocolThatIsInstalled) {
  EXPECT_EQ(ofProtocol(explain({asked({})}, {answered({})})), "installed as asked");
  EXPECT_EQ(ofProtocol(explain({asked({})}, {answered({}, {2, 0})})),
            "installed at 2.0, which is older than 2.1, as the server's initializer chose");
  EXPECT_EQ(ofProtocol(explain({asked({})}, {answered({}, {2, 2})})),
            "installed at 2.2, which is newer than 2.1, as the server's initializer chose");
  EXPECT_EQ(ofProtocol(explain({asked({}), asked({})}, {answered({}), answered({}, {3, 0})})),
            "installed at 3.0, which is newer than 2.1, as the server's initializer chose; but an earlier "
            "answer has 2.1, and the client " +
                throws);
  EXPECT_EQ(ofProtocol(explain({{"Chat", {1, 0}, {}}}, {{"Chat", {1, 0}, {}}}, offers)),
            "installed as asked; the offers at hand do not have the protocol: the server has changed since");
}

TEST(Sentences, OfAProtocolThatIsNotInstalled) {
  const Configs chat{{"Chat", {1, 0}, {}}};
  const std::string severally =
      "; or because it is asked for at several versions, for which a server that knows it " + throws +
      " and answers nothing";

  EXPECT_EQ(ofProtocol(explain(chat, {}, offers)),
            R"(not offered by the server, which offers only "Telemetry")");
  EXPECT_EQ(ofProtocol(explain(chat, {}, Offers{})),
            "not offered by the server, which offers no protocol at all");
  EXPECT_EQ(
      ofProtocol(explain({asked({})}, {}, offers)),
      "offered by the server, but not installed: its initializer declined 2.1 with the features agreed, "
      "or is empty");
  EXPECT_EQ(
      ofProtocol(explain({asked({}, {2, 0}), asked({})}, {}, offers)),
      "offered by the server, but not installed: its initializer declined 2.1 with the features agreed, "
      "or is empty" +
          severally);
  EXPECT_EQ(ofProtocol(explain(chat, {})),
            "missing from the answer: the server does not offer it, or its initializer declined 1.0; the "
            "server's offers tell which");
  EXPECT_EQ(ofProtocol(explain({asked({}, {2, 0}), asked({})}, {})),
            "missing from the answer: the server does not offer it, or its initializer declined 2.1; the "
            "server's offers tell which" +
                severally);
  EXPECT_EQ(explain({asked({}), asked({}, {1, 0})}, {answered({}, {1, 0})}).protocols.front().why,
            "missing from the answer, which has the protocol for another request: the server's initializer "
            "declined this one, for 2.1");
  EXPECT_EQ(ofProtocol(explain({asked({}), asked({}, {2, 0})}, {answered({})})),
            "asked for at 2.0, but installed at 2.1 before: a server of this library " + throws +
                " here, and its whole answer is lost; ask for one version");
  EXPECT_EQ(ofProtocol(explain({asked({}, undefinedVersion)}, {})),
            "asked for without a version (65535.65535 means none), so the server dropped it");
  EXPECT_EQ(ofProtocol(explain({{}}, {})),
            "the request is empty, as one becomes that could not be read, so the server dropped it; diagnose "
            "the requests' document");
  EXPECT_EQ(ofProtocol(explain({asked({})}, {answered({}, undefinedVersion)})),
            "answered without a version (65535.65535 means none), so the client passes it over");
}

TEST(Sentences, OfAFeatureThatIsAgreed) {
  EXPECT_EQ(ofFeature(explain({asked({{"x", "1", required}})}, {answered({{"x", "1", success}})})),
            "agreed as asked");
  EXPECT_EQ(
      ofFeature(explain({asked({{"x", "1", optional}, {"x", "2", required}})},
                        {answered({{"x", "1", success}, {"x", "2", success}})})),
      R"(agreed, but "1" counts, which was agreed before; ask for one value, or first for the one that )"
      "is wanted most");
  EXPECT_EQ(
      ofFeature(explain({asked({{"x", "1", required}}), asked({{"x", "2", required}})},
                        {answered({{"x", "1", success}}), answered({{"x", "2", success}})})),
      R"(agreed in a further answer for the protocol, but the first one counts, and has "1"; ask for the )"
      "protocol once, with all its features");
  EXPECT_EQ(ofFeature(explain({asked({}), asked({{"x", "2", required}})},
                              {answered({}), answered({{"x", "2", success}})})),
            "agreed in a further answer for the protocol, but the first one counts, and does not have this "
            "feature; ask for the protocol once, with all its features");
}

TEST(Sentences, OfAFeatureThatFailed) {
  const auto failed = [](const FeatureRequest& request, FeatureStatus status) {
    return ofFeature(explain({asked({request})}, {answered({{request.name, request.value, status}})}));
  };
  const auto failedByOffers = [](const FeatureRequest& request, FeatureStatus status) {
    return ofFeature(
        explain({asked({request})}, {answered({{request.name, request.value, status}})}, offers));
  };

  EXPECT_EQ(failed({"x", "1", required}, unsupported_error), "required, but not offered by the server");
  EXPECT_EQ(failed({"x", "1", FeatureHandling::preferred}, FeatureStatus::unsupported_warning),
            "preferred, but not offered by the server");
  EXPECT_EQ(failedByOffers({"x", "1", optional}, FeatureStatus::unsupported_warning),
            R"(optional, but not offered by the server, which offers only "codec", "mode")");
  EXPECT_EQ(ofFeature(explain({asked({{"x", "1", required}})}, {answered({{"x", "1", unsupported_error}})},
                              {"", "", {{"Telemetry", {}}}})),
            "required, but not offered by the server, which offers no feature of this protocol");
  EXPECT_EQ(failed({"x", "1", required}, invalid_value_error),
            "required, and offered only with other values; the server's offers tell which");
  EXPECT_EQ(failedByOffers({"codec", "gzip", optional}, FeatureStatus::invalid_value_warning),
            R"(optional, and offered only as "lz4", "zstd")");
  EXPECT_EQ(failedByOffers({"codec", "zst", required}, invalid_value_error),
            R"(required, and offered only as "lz4", "zstd"; "zst" may be a misspelling of "zstd")");
  EXPECT_EQ(failed({"x", "1", required}, FeatureStatus::invalid_handling),
            "required, and answered with invalid_handling, which no server of this library does");
  EXPECT_EQ(failed({"x", "1", required}, static_cast<FeatureStatus>(77)),
            "required, and answered without a known status; diagnose the answer's document");
}

TEST(Sentences, OfAFeatureThatHasNoAnswer) {
  EXPECT_EQ(ofFeature(explain({asked({{"x", "1", required}})}, {answered({})})),
            "required, but the answer says nothing of it, as no server of this library does; diagnose the "
            "answer's document");
  EXPECT_EQ(ofFeature(explain({asked({{}})}, {answered({})})),
            "the request is empty, as one becomes that lacks a name, a value or a known handling; diagnose "
            "the requests' document");
  EXPECT_EQ(ofFeature(explain({asked({{"x", "1", FeatureHandling::undefined}})}, {answered({})})),
            "asked for without a known handling, so the server read an empty request, or has nothing to say "
            "of what it does not offer; make it required, optional or preferred");
  EXPECT_EQ(ofFeature(explain({asked({{"x", "1", optional}})}, {})), "optional, and lost with the protocol");
}

TEST(Sentences, OfAFeatureWhoseAnswerIsAtOddsWithTheOffers) {
  const auto why = [](const FeatureRequest& request, const Entries& entries) {
    return ofFeature(explain({asked({request})}, {answered(entries)}, offers));
  };
  const std::string since = ": the server has changed since";

  EXPECT_EQ(why({"x", "1", required}, {{"x", "1", success}}),
            "agreed as asked; by the offers at hand it is offered not at all" + since);
  EXPECT_EQ(why({"codec", "gzip", required}, {{"codec", "gzip", success}}),
            R"(agreed as asked; by the offers at hand it is offered only as "lz4", "zstd")" + since);
  EXPECT_EQ(
      why({"codec", "lz4", required}, {{"codec", "lz4", unsupported_error}}),
      "required, but not offered by the server; by the offers at hand it is offered with this value" + since);
  EXPECT_EQ(why({"codec", "lz4", required}, {{"codec", "lz4", invalid_value_error}}),
            "required, and offered only with other values; the server's offers tell which; by the offers at "
            "hand it is offered with this value" +
                since);
  EXPECT_EQ(why({"x", "1", required}, {{"x", "1", invalid_value_error}}),
            "required, and offered only with other values; the server's offers tell which; by the offers at "
            "hand it is offered not at all" +
                since);
  EXPECT_EQ(why({"codec", "lz4", required}, {}),
            "required, but the answer says nothing of it, as no server of this library does; diagnose the "
            "answer's document; by the offers at hand it is offered with this value" +
                since);
}

// Those outcomes agree with any offers.
TEST(Sentences, OfAFeatureWhoseOutcomeSaysNothingAboutOffers) {
  const auto why = [](const FeatureRequest& request, const Entries& entries) {
    return ofFeature(explain({asked({request})}, {answered(entries)}, offers));
  };

  EXPECT_EQ(why({"x", "1", required}, {}),
            "required, but the answer says nothing of it, as no server of this library does; diagnose the "
            "answer's document");
  EXPECT_EQ(why({"codec", "lz4", FeatureHandling::undefined}, {}),
            "asked for without a known handling, so the server read an empty request, or has nothing to say "
            "of what it does not offer; make it required, optional or preferred");
  EXPECT_EQ(why({"codec", "lz4", required}, {{"codec", "lz4", FeatureStatus::invalid_handling}}),
            "required, and answered with invalid_handling, which no server of this library does");
  EXPECT_EQ(ofFeature(explain({asked({{"codec", "lz4", required}})}, {}, offers)),
            "required, and lost with the protocol");
}

TEST(Sentences, OfAFeatureWhoseAnswerContradictsItself) {
  EXPECT_EQ(ofFeature(explain({asked({{"x", "1", required}})},
                              {answered({{"x", "1", success}, {"x", "1", unsupported_error}})})),
            "agreed as asked; the answer contradicts itself, with several statuses for this value");
}

TEST(Sentences, OfWhatNobodyAskedFor) {
  EXPECT_THAT(
      ofUnasked(explain(
          {}, {answered({}), answered({}, {2, 0}), answered({}), {}, {"Ghost", undefinedVersion, {}}})),
      ElementsAre("nobody asked for it, but the client installs it if it knows it",
                  "nobody asked for it, and an earlier answer has 2.1: the client " + throws,
                  "nobody asked for it, and it changes nothing: an earlier answer for the protocol "
                  "counts",
                  "the answer is empty, as one becomes that could not be read, so the client passes "
                  "it over; diagnose the answer's document",
                  "nobody asked for it, and it has no version, so the client passes it over"));
  EXPECT_THAT(
      ofUnasked(explain({asked({{"x", "1", required}}), asked({{"x", "1", required}})},
                        {answered({{"x", "1", success}, {"y", "1", success}, {"z", "1", unsupported_error}}),
                         answered({{"x", "1", success}, {"y", "2", success}, {"w", "1", success}})})),
      ElementsAre("nobody asked for it, but the client installs the protocol with it",
                  "nobody asked for it; it changes nothing",
                  R"(nobody asked for it; it changes nothing, for "1" counts)",
                  "nobody asked for it; it changes nothing, for an earlier answer for the protocol counts"));
  EXPECT_THAT(
      ofUnasked(explain({asked({})}, {answered({{"y", "1", unsupported_error}, {"y", "1", success}})})),
      ElementsAre("nobody asked for it, and the answer contradicts itself, with several statuses for it; it "
                  "changes nothing",
                  "nobody asked for it, but the client installs the protocol with it"));
}

TEST(Sentences, OfWhatNobodyAskedForInAnAnswerThatCountsForNothing) {
  const Resolutions answer{answered({{"y", "1", success}}, undefinedVersion)};

  EXPECT_THAT(ofUnasked(explain({asked({})}, answer)),
              ElementsAre("nobody asked for it; it changes nothing"));
  EXPECT_THAT(ofReasons(judge({asked({})}, answer)),
              ElementsAre(R"(protocol "Telemetry": not installed: the answer has no version for it)"));
}

TEST(Sentences, OfAJudgementAboutAProtocol) {
  const Configs one{asked({})};

  EXPECT_THAT(
      ofReasons(judge(one, {})),
      ElementsAre(R"(protocol "Telemetry": not installed: not offered, or its initializer declined)"));
  EXPECT_THAT(ofReasons(judge({asked({}), asked({}, {1, 0})}, {answered({}, {1, 0})})),
              ElementsAre(R"(protocol "Telemetry": not installed: its initializer declined)"));
  EXPECT_THAT(ofReasons(judge({asked({}, undefinedVersion)}, {})),
              ElementsAre(R"(protocol "Telemetry": not installed: it is asked for without a version)"));
  EXPECT_THAT(ofReasons(judge(one, {answered({}, undefinedVersion)})),
              ElementsAre(R"(protocol "Telemetry": not installed: the answer has no version for it)"));
  EXPECT_THAT(
      ofReasons(judge({asked({}), asked({}, {2, 0})}, {answered({})})),
      ElementsAre(R"(protocol "Telemetry": it is asked for at 2.0, and installed at 2.1: a server of )"
                  "this library " +
                  throws + ", and nothing is agreed"));
  EXPECT_THAT(ofReasons(judge(one, {answered({}, {2, 0})})),
              ElementsAre(R"(protocol "Telemetry": installed at 2.0, which is older than 2.1 as asked)"));
  EXPECT_THAT(ofReasons(judge(one, {answered({}, {2, 2})})),
              ElementsAre(R"(protocol "Telemetry": installed at 2.2, which is newer than 2.1 as asked)"));
  EXPECT_THAT(ofReasons(judge({asked({}), asked({})}, {answered({}), answered({}, {2, 2})})),
              ElementsAre(R"(protocol "Telemetry": installed at 2.2, which is newer than 2.1 as asked)",
                          R"(protocol "Telemetry": answered with 2.1 and with 2.2: the client )" + throws));
  EXPECT_THAT(ofReasons(judge({}, {answered({}), answered({}, {2, 2})})),
              ElementsAre(R"(protocol "Telemetry": installed at 2.1, and nobody asked for it)",
                          R"(protocol "Telemetry": installed at 2.2, and nobody asked for it)",
                          R"(protocol "Telemetry": answered with 2.1 and with 2.2: the client )" + throws));
}

TEST(Sentences, OfAJudgementAboutAFeature) {
  const auto reasons = [](const Features& features, const Entries& entries) {
    return ofReasons(judge({asked(features)}, {answered(entries)}));
  };
  const std::string x = R"(protocol "Telemetry", feature "x": )";
  const auto failed = [&](FeatureStatus status) {
    return reasons({{"x", "1", optional}}, {{"x", "1", status}});
  };

  EXPECT_THAT(reasons({{"x", "1", optional}}, {}), ElementsAre(x + R"("1" is optional, and not answered)"));
  EXPECT_THAT(failed(unsupported_error), ElementsAre(x + R"("1" is optional, and not offered)"));
  EXPECT_THAT(failed(FeatureStatus::unsupported_warning),
              ElementsAre(x + R"("1" is optional, and not offered)"));
  EXPECT_THAT(failed(invalid_value_error),
              ElementsAre(x + R"("1" is optional, and offered only with other values)"));
  EXPECT_THAT(failed(FeatureStatus::invalid_value_warning),
              ElementsAre(x + R"("1" is optional, and offered only with other values)"));
  EXPECT_THAT(failed(FeatureStatus::invalid_handling),
              ElementsAre(x + R"("1" is optional, and answered with invalid_handling)"));
  EXPECT_THAT(failed(FeatureStatus::undefined),
              ElementsAre(x + R"("1" is optional, and answered with undefined)"));
  EXPECT_THAT(failed(static_cast<FeatureStatus>(77)),
              ElementsAre(x + R"("1" is optional, and answered with undefined)"));
  EXPECT_THAT(ofReasons(judge({asked({{"x", "1", required}})}, {})),
              ElementsAre(R"(protocol "Telemetry": not installed: not offered, or its initializer declined)",
                          x + R"("1" is required, and lost with the protocol)"));
  EXPECT_THAT(
      reasons({{"x", "1", optional}, {"x", "2", required}}, {{"x", "1", success}, {"x", "2", success}}),
      ElementsAre(x + R"(required: "2" is agreed, but "1" counts, which was agreed before)",
                  x + R"("2" is agreed, but "1" counts, which was agreed before)"));
  EXPECT_THAT(
      ofReasons(
          judge({asked({}), asked({{"x", "2", optional}})}, {answered({}), answered({{"x", "2", success}})})),
      ElementsAre(x + R"("2" is agreed, but an earlier answer for the protocol counts, which does not )"
                      "have the feature"));
  EXPECT_THAT(reasons({{"x", "1", required}}, {{"x", "1", success}, {"x", "1", unsupported_error}}),
              ElementsAre(x + R"(the statuses of "1" contradict each other)"));
  EXPECT_THAT(reasons({}, {{"x", "1", success}, {"x", "1", unsupported_error}}),
              ElementsAre(x + R"("1" is agreed, and nobody asked for it)",
                          x + R"(nobody asked for "1", and its statuses contradict each other)"));
}

// ---- documents

std::string message(DocumentKind document, const std::string& text) {
  const auto findings = diagnose(document, text);
  EXPECT_THAT(findings, SizeIs(1)) << text;
  return findings.at(0).message;
}

std::string ofConfig(const std::string& config) {
  return message(DocumentKind::ProtocolConfigs, R"({"protocolConfigs":[)" + config + "]}");
}
std::string ofVersion(const std::string& version) {
  return ofConfig(R"({"features":[],"name":"p","version":)" + version + "}");
}
std::string ofRequest(const std::string& request) {
  return ofConfig(R"({"name":"p","version":{"major":1,"minor":0},"features":[)" + request + "]}");
}
std::string ofAnswer(const std::string& answer) {
  return message(DocumentKind::ProtocolResolutions, R"({"protocolResolutions":[)" + answer + "]}");
}
std::string ofEntry(const std::string& entry) {
  return ofAnswer(R"({"name":"p","version":{"major":1,"minor":0},"resolutions":[)" + entry + "]}");
}
std::string ofOffers(const std::string& rest, const std::string& software = R"({"name":"s","version":"1"})") {
  return message(DocumentKind::ProtocolOffers,
                 R"({"software":)" + software + R"(,"protocolOffers":)" + rest + "}");
}
std::string ofOffered(const std::string& feature) {
  return ofOffers(R"([{"name":"p","features":[)" + feature + "]}]");
}

const std::string lostConfig = ": the request for the protocol counts as an empty one";
const std::string lostRequest = ": the request for the feature counts as an empty one";
const std::string lostAnswer = ": the answer for the protocol counts as an empty one";
const std::string lostEntry = ": the answer for the feature counts as an empty one";
const std::string lostOffer = ": the offer of the protocol counts as an empty one";
const std::string lostOffered = ": the offer of the feature counts as an empty one";
const std::string lostRecord = ": the record counts as an empty one";
const std::string lostDocument = ": the whole document counts as empty";

TEST(Sentences, OfAFindingAboutAWholeDocument) {
  const auto configs = DocumentKind::ProtocolConfigs;

  EXPECT_EQ(message(configs, "[]"), "the document is an array and should be an object" + lostDocument);
  EXPECT_EQ(message(configs, R"("a")"),
            R"(the document is the string "a" and should be an object)" + lostDocument);
  EXPECT_EQ(message(configs, "-1.5"),
            "the document is the number -1.5 and should be an object" + lostDocument);
  EXPECT_EQ(message(configs, "true"), "the document is true and should be an object" + lostDocument);
  EXPECT_EQ(message(configs, "false"), "the document is false and should be an object" + lostDocument);
  EXPECT_EQ(message(configs, "null"), "the document is null and should be an object" + lostDocument);
  EXPECT_EQ(message(configs, "{}"),
            R"(there is no "protocolConfigs", which should be an array)" + lostDocument);
  EXPECT_EQ(message(DocumentKind::ProtocolResolutions, "{}"),
            R"(there is no "protocolResolutions", which should be an array)" + lostDocument);
  EXPECT_EQ(ofOffers("{}"), R"("protocolOffers" is an object and should be an array)" + lostDocument);
  EXPECT_EQ(
      diagnose("{}").at(0).message,
      R"(there is none of "protocolConfigs", "protocolResolutions" and "protocolOffers", so this is no )"
      "document that anybody reads");
  EXPECT_EQ(diagnose("[]").at(0).message, "the document is an array and should be an object" + lostDocument);
}

TEST(Sentences, OfATextThatIsNoJson) {
  EXPECT_EQ(diagnose("\xef\xbb\xbf{}").at(0).message,
            "the text begins with a byte order mark, which JSON has not" + lostDocument);
  EXPECT_EQ(diagnose("").at(0).message, "the text is empty" + lostDocument);
  EXPECT_EQ(diagnose(" ").at(0).message, "the text ends too early" + lostDocument);
  EXPECT_EQ(diagnose("[]]").at(0).message, R"(more text after the end of the document: "]")" + lostDocument);
  EXPECT_EQ(diagnose("7 8").at(0).message, R"(more text after the end of the document: "8")" + lostDocument);
  EXPECT_EQ(diagnose("x").at(0).message, R"(no JSON from here on: "x")" + lostDocument);
  EXPECT_EQ(diagnose("{x" + std::string(19, 'y')).at(0).message,
            "no JSON from here on: \"x" + std::string(19, 'y') + '"' + lostDocument);
  EXPECT_EQ(diagnose("{x" + std::string(20, 'y')).at(0).message,
            "no JSON from here on: \"x" + std::string(19, 'y') + "\"..." + lostDocument);
  EXPECT_EQ(diagnose("{} x" + std::string(20, 'y')).at(0).message,
            "more text after the end of the document: \"x" + std::string(19, 'y') + "\"..." + lostDocument);
  const std::string deep(128, '[');
  EXPECT_EQ(diagnose(deep + "[").at(0).message, "nested deeper than 128 levels" + lostDocument);
  EXPECT_EQ(diagnose(deep + "{").at(0).message, "nested deeper than 128 levels" + lostDocument);
  EXPECT_EQ(diagnose(deep + "x").at(0).message, R"(no JSON from here on: "x")" + lostDocument);
  EXPECT_EQ(diagnose(deep.substr(1) + "}").at(0).message, R"(no JSON from here on: "}")" + lostDocument);
  EXPECT_EQ(diagnose("{{").at(0).message, R"(no JSON from here on: "{")" + lostDocument);
}

TEST(Sentences, OfAFindingAboutARequest) {
  EXPECT_EQ(ofConfig("7"), "the element is the number 7 and should be an object: it is left out of the list");
  EXPECT_EQ(ofConfig(R"({"version":{"major":1,"minor":0},"features":[]})"),
            R"(there is no "name", which should be a string)" + lostConfig);
  EXPECT_EQ(ofConfig(R"({"name":"","version":{"major":1,"minor":0},"features":[]})"),
            R"("name" is the string "" and should be a name)" + lostConfig);
  EXPECT_EQ(ofConfig(R"({"name":"p","features":[]})"),
            R"(there is no "version", which should be an object)" + lostConfig);
  EXPECT_EQ(ofConfig(R"({"name":"p","version":{"major":1,"minor":0}})"),
            R"(there is no "features", which should be an array: it counts as an empty list)");
  EXPECT_EQ(ofConfig(R"({"name":"p","version":{"major":1,"minor":0},"features":[],"more":1})"),
            R"(nobody reads a member "more" here: it is passed over)");
  EXPECT_EQ(ofConfig(R"({"name":"p","name":"p","version":{"major":1,"minor":0},"features":[]})"),
            R"(there is a later "name", which counts: this one is passed over)");
  EXPECT_EQ(ofRequest("null"), "the element is null and should be an object: it is left out of the list");
  EXPECT_EQ(ofRequest(R"({"handling":"x","name":"f","value":"v"})"),
            R"("handling" is the string "x" and should be one of "required", "optional", "preferred")" +
                lostRequest);
  EXPECT_EQ(ofRequest(R"({"handling":"required","name":[],"value":"v"})"),
            R"("name" is an array and should be a string)" + lostRequest);
  EXPECT_EQ(ofRequest(R"({"handling":"required","name":"f"})"),
            R"(there is no "value", which should be a string)" + lostRequest);
}

TEST(Sentences, OfAFindingAboutAVersion) {
  const std::string major = "a number from 0 to 65534, or from 65536 to 4294967295";
  const std::string minor = "a number from 0 to 4294967295";
  const std::string digits(40, '1');

  EXPECT_EQ(ofVersion("[]"), R"("version" is an array and should be an object)" + lostConfig);
  EXPECT_EQ(ofVersion(R"({"minor":0})"),
            R"(there is no "major", which should be )" + major + ": it counts as 0");
  EXPECT_EQ(ofVersion(R"({"major":0})"),
            R"(there is no "minor", which should be )" + minor + ": it counts as 0");
  EXPECT_EQ(ofVersion(R"({"major":65535,"minor":0})"),
            R"("major" is the number 65535 and should be )" + major + lostRecord);
  EXPECT_EQ(ofVersion(R"({"major":1,"minor":-1.5})"),
            R"("minor" is the number -1.5 and should be )" + minor + lostRecord);
  EXPECT_EQ(ofVersion(R"({"major":)" + digits + R"(,"minor":1})"),
            R"("major" is the number )" + digits + " and should be " + major + lostRecord);
  EXPECT_EQ(ofVersion(R"({"major":)" + digits + R"(0,"minor":1})"),
            R"("major" is the number )" + digits + "... and should be " + major + lostRecord);
  EXPECT_EQ(ofVersion(R"({"major":1.5,"minor":0})"),
            R"("major" is the number 1.5 and should be a whole number: it counts as 1)");
}

TEST(Sentences, OfAFindingAboutAnAnswer) {
  EXPECT_EQ(ofAnswer(R"({"name":true,"version":{"major":1,"minor":0},"resolutions":[]})"),
            R"("name" is true and should be a string)" + lostAnswer);
  EXPECT_EQ(ofAnswer(R"({"name":"p","version":{"major":1,"minor":0}})"),
            R"(there is no "resolutions", which should be an array: it counts as an empty list)");
  EXPECT_EQ(ofEntry(R"({"name":"f","status":"x","message":"v"})"),
            R"("status" is the string "x" and should be one of "success", "unsupported_error", )"
            R"("unsupported_warning", "invalid_value_error", "invalid_value_warning", "invalid_handling")" +
                lostEntry);
  EXPECT_EQ(ofEntry(R"({"name":"f","status":"success"})"),
            R"(there is no "message", which should be a string: it counts as an empty text)");
  EXPECT_EQ(ofEntry(R"({"status":"success","message":"v"})"),
            R"(there is no "name", which should be a string)" + lostEntry);
}

TEST(Sentences, OfAFindingAboutOffers) {
  EXPECT_EQ(ofOffers(R"([{"features":[]}])"), R"(there is no "name", which should be a string)" + lostOffer);
  EXPECT_EQ(ofOffers(R"([{"name":"p"}])"),
            R"(there is no "features", which should be an array: it counts as an empty list)");
  EXPECT_EQ(
      ofOffers("[]", "7"),
      R"("software" is the number 7 and should be an object: the software has neither name nor version)");
  EXPECT_EQ(
      message(DocumentKind::ProtocolOffers, R"({"protocolOffers":[]})"),
      R"(there is no "software", which should be an object: the software has neither name nor version)");
  EXPECT_EQ(ofOffers("[]", R"({"name":"s","version":1})"),
            R"("version" is the number 1 and should be a string: it counts as an empty text)");
  EXPECT_EQ(ofOffers("[]", R"({"version":"1"})"),
            R"(there is no "name", which should be a string: it counts as an empty text)");
  EXPECT_EQ(ofOffered(R"({"handling":"undefined","name":"f"})"),
            R"(there is no "value", which should be a string)" + lostOffered);
  EXPECT_EQ(ofOffered(R"({"handling":"x","name":"f","value":"v"})"),
            R"("handling" is the string "x" and should be one of "required", "optional", "preferred", )"
            R"("undefined": it counts as undefined, which does not matter in an offer)");
}

// ---- what may have been meant

bool isGuessed(const std::string& asked, const std::string& offered) {
  const auto why = ofProtocol(explain({{asked, {1, 0}, {}}}, {}, {"", "", {{offered, {}}}}));
  const bool isGuess =
      why == "not offered by the server; \"" + asked + "\" may be a misspelling of \"" + offered + '"';
  EXPECT_TRUE(isGuess || why.find("misspelling") == std::string::npos) << why;
  return isGuess;
}

TEST(Sentences, GuessAtWhatDiffersInCaseBlanksOrDashesHoweverShort) {
  for (const char* asked : {"AZ", "aZ", " az", "a z", "az-", "a_z"})
    EXPECT_TRUE(isGuessed(asked, "az")) << asked;
  EXPECT_TRUE(isGuessed("az", "A-Z"));
  for (const char* blank : {"\t", "\r", "\n"}) {
    const auto why = ofProtocol(explain({{"a", {1, 0}, {}}}, {}, {"", "", {{std::string("a") + blank, {}}}}));
    EXPECT_THAT(why, testing::HasSubstr("misspelling"));
  }
  EXPECT_FALSE(isGuessed("@z", "`z"));
  EXPECT_FALSE(isGuessed("a[", "a{"));
  EXPECT_FALSE(isGuessed("a.z", "az"));
}

TEST(Sentences, GuessAtOneSlipAndNoMore) {
  struct Case {
    const char* one;
    const char* other;
    bool isOneSlip;
  };
  for (const auto& [one, other, isOneSlip] :
       std::vector<Case>{{"abc", "abcd", true},        {"ab", "abc", false},        {"abc", "abcde", false},
                         {"abcd", "abxcd", true},      {"abcd", "xabcd", true},     {"abbb", "abb", true},
                         {"abcd", "abxd", true},       {"abcd", "xbcd", true},      {"abcd", "abcx", true},
                         {"abcd", "acbd", true},       {"abcd", "abdc", true},      {"abcd", "bacd", true},
                         {"abcd", "adcb", false},      {"abcd", "axyd", false},     {"abcd", "acxd", false},
                         {"abcd", "axbd", false},      {"abxyd", "abzd", false},    {"abcd", "axyzd", false},
                         {"zab", "zbac", false},       {"abcdef", "ghijkl", false}, {"lz4", "lz5", false},
                         {"level10", "level1", false}, {"level9x", "level9", true}, {"abc", "ab8c", false},
                         {"abx", "ab7", false},        {"ab1c", "abc1", false}}) {
    EXPECT_EQ(isGuessed(one, other), isOneSlip) << one << ' ' << other;
    EXPECT_EQ(isGuessed(other, one), isOneSlip) << other << ' ' << one;
  }
}

TEST(Sentences, GuessAmongSixteenTextsOfFortyBytesAtMost) {
  const std::string forty(40, 'a');
  Offers many;
  for (int i = 0; i < 15; ++i) many.protocols.push_back({"p" + std::to_string(i), {}});
  auto tooMany = many;
  many.protocols.push_back({"abcd", {}});
  tooMany.protocols.push_back({"zzzz", {}});
  tooMany.protocols.push_back({"abcd", {}});
  const Configs configs{{"abc", {1, 0}, {}}};

  EXPECT_EQ(ofProtocol(explain(configs, {}, many)),
            R"(not offered by the server; "abc" may be a misspelling of "abcd")");
  EXPECT_EQ(ofProtocol(explain(configs, {}, tooMany)),
            R"(not offered by the server, which offers only "p0", "p1", "p2", "p3", "p4" and 12 more)");
  EXPECT_TRUE(isGuessed(forty, forty.substr(1)));
  EXPECT_TRUE(isGuessed(forty.substr(1), forty));
  EXPECT_THAT(ofProtocol(explain({{forty + 'a', {1, 0}, {}}}, {}, {"", "", {{forty, {}}}})),
              testing::Not(testing::HasSubstr("misspelling")));
  EXPECT_THAT(ofProtocol(explain({{forty, {1, 0}, {}}}, {}, {"", "", {{forty + 'a', {}}}})),
              testing::Not(testing::HasSubstr("misspelling")));
}

TEST(Sentences, ListFiveNamesAndCountTheRest) {
  Offers listed;
  for (const char* name : {"a", "b", "c", "d", "e"}) listed.protocols.push_back({name, {}});
  const Configs configs{{"Chat", {1, 0}, {}}};

  EXPECT_EQ(ofProtocol(explain(configs, {}, listed)),
            R"(not offered by the server, which offers only "a", "b", "c", "d", "e")");
  listed.protocols.push_back({"f", {}});
  EXPECT_EQ(ofProtocol(explain(configs, {}, listed)),
            R"(not offered by the server, which offers only "a", "b", "c", "d", "e" and 1 more)");
}

// As many of the values that are offered as fit into 1024 bytes.
TEST(Sentences, ComeWithAThousandBytesOfOfferedValuesAtMost) {
  const auto offeredOf = [](const std::vector<std::size_t>& sizes) {
    Offers lengthy{"", "", {{"Telemetry", {}}}};
    char letter = 'a';
    for (const auto size : sizes) {
      lengthy.protocols.front().features.push_back({"x", std::string(size, letter++)});
    }
    return explain({asked({{"x", "1", required}})}, {}, lengthy).protocols.at(0).features.at(0).offered;
  };

  EXPECT_THAT(offeredOf({512, 512}), SizeIs(2));
  EXPECT_THAT(offeredOf({512, 512, 1}), SizeIs(2));
  EXPECT_THAT(offeredOf({512, 513}), SizeIs(1));
  EXPECT_THAT(offeredOf({1025}), SizeIs(0));
}

// ---- what stands in quotation marks

std::string quotedInSentence(const std::string& name) {
  const auto sentence = judge({{name, {1, 0}, {}}}, {}).reasons.at(0).sentence;
  const std::string start = "protocol ";
  return sentence.substr(start.size(), sentence.rfind(": not installed") - start.size());
}

TEST(Sentences, QuoteFortyBytesAndNoHalfCharacter) {
  const std::string forty(40, 'a');
  const auto shortened = [&](std::size_t letters, const std::string& rest) {
    return quotedInSentence(forty.substr(0, letters) + rest);
  };
  const auto cut = [&](std::size_t letters, const std::string& rest = "") {
    return '"' + forty.substr(0, letters) + rest + "\"...";
  };

  EXPECT_EQ(quotedInSentence(forty), '"' + forty + '"');
  EXPECT_EQ(quotedInSentence(forty + 'b'), cut(40));
  // the cut would come between the bytes of a character
  EXPECT_EQ(shortened(39, "\xc3\xa9 and more"), cut(39));
  EXPECT_EQ(shortened(38, "\xc3\xa9 and more"), cut(38, "\xc3\xa9"));
  EXPECT_EQ(shortened(38, "\xe2\x82\xac and more"), cut(38));
  EXPECT_EQ(shortened(37, "\xf0\x9f\x98\x80 and more"), cut(37));
  EXPECT_EQ(shortened(36, "\xf0\x9f\x98\x80 and more"), cut(36, "\xf0\x9f\x98\x80"));
  // ill-formed bytes: each is an escape, so there is nothing to keep whole
  const auto escapes = [](std::size_t count) {
    std::string text;
    for (; count > 0; --count) text += "\\xbf";
    return text;
  };
  EXPECT_EQ(shortened(30, std::string(20, '\xbf')), cut(30, escapes(10)));
  EXPECT_EQ(shortened(37, std::string(20, '\xbf')), cut(37, escapes(3)));
  // a letter torn by the peer, before which the cut comes
  EXPECT_EQ(shortened(39, "\xe2\x82 and more"), cut(39));
}

TEST(Sentences, QuoteControlCharactersAndIllFormedBytesAsEscapes) {
  EXPECT_EQ(quotedInSentence(std::string("\0\x1f\x20\x7e\x7f", 5)), R"("\x00\x1f ~\x7f")");
  EXPECT_EQ(quotedInSentence("\n\r\t\"\\"), R"("\n\r\t\"\\")");
  EXPECT_EQ(quotedInSentence("\xc2\x80\xc2\x9f\xc2\xa0"), "\"\\u0080\\u009f\xc2\xa0\"");
  EXPECT_EQ(quotedInSentence("\xc2\x85"), R"("\u0085")");
  EXPECT_EQ(quotedInSentence("\xc2\x7f\xc2"), R"("\xc2\x7f\xc2")");
  EXPECT_EQ(quotedInSentence("\xc1\x80\xc3\x90"), "\"\\xc1\\x80\xc3\x90\"");
}

}  // namespace
}  // namespace foundation::corvane::inspect
