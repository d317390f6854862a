// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/inspect.hpp"
#include "tests/exhaustion/exhaust.hpp"

namespace foundation::corvane::inspect {
namespace {

using namespace common::session;
using common::serialization::ProtocolRegistry;
using common::serialization::Registry;
using exhaustion::exhaust;

// Beyond what a string holds in itself.
const std::string name(100, 'n');
const std::string value(100, 'v');

const std::vector<MessageProtocolConfig> configs{
    {name, {1, 1}, {{name, value, FeatureHandling::required}, {"a", "1", FeatureHandling::preferred}}},
    {"b", {2, 0}, {{"c", "d", FeatureHandling::optional}}},
    {name, {3, 0}, {}},
    {}};
const std::vector<MessageProtocolResolution> resolutions{
    {name, {1, 0}, {{name, value, FeatureStatus::success}, {"e", "1", FeatureStatus::unsupported_warning}}},
    {"nobody asked for this one", {2, 0}, {}}};

Offers offers() {
  return {name, value, {{name, {{name, value}, {name, "another value of the feature"}}}, {"b", {}}}};
}

Agreement mine() {
  return {{{"b", {1, 0}, {{name, value}}},
           {"c", {1, 0}, {{"x", "1"}}},
           {name, {1, 0}, {{name, value}, {"y", "2"}}}}};
}

Agreement theirs() {
  return {{{"b", {1, 0}, {{name, "another value of the feature"}}},
           {"c", {2, 0}, {}},
           {name, {1, 0}, {{"z", "3"}}}}};
}

TEST(EnumeratorsWithoutMemory, HaveNames) {
  exhaust({"inspect::toCString(DifferenceKind)", "inspect::toCString(Effect)",
           "inspect::toCString(FeatureOutcome)", "inspect::toCString(ReasonKind)",
           "inspect::toCString(ProtocolOutcome)", "inspect::toCString(Rule)", "inspect::toCString(Verdict)",
           "inspect::listName"},
          [] {
            toCString(DifferenceKind::Value);
            toCString(Effect::Dropped);
            toCString(FeatureOutcome::ProtocolLost);
            toCString(ReasonKind::ProtocolLost);
            toCString(ProtocolOutcome::AnswerWithoutVersion);
            toCString(Rule::VersionRange);
            toCString(Verdict::Refused);
            listName(DocumentKind::ProtocolOffers);
          });
}

TEST(AgreementWithoutMemory, IsTakenOrNot) {
  const auto registry = Registry::create("a connection");
  registry->setInstalledProtocol(name, {1, 0}, {{name, value}, {"a", "1"}});
  registry->setInstalledProtocol("b", {1, 0}, {});
  exhaust({"inspect::agreementOf(Registry)"}, [&] { return agreementOf(*registry); });

  const std::vector<common::session::MessageProtocolResolution> answer{
      {name, {1, 0}, {{name, value, common::session::FeatureStatus::success}}}, {"b", {1, 0}, {}}};
  exhaust({"inspect::agreementOf(vector<MessageProtocolResolution>)"}, [&] { return agreementOf(answer); });
}

TEST(AgreementWithoutMemory, IsToldOrNot) {
  exhaust({"inspect::toJSON(Agreement)"}, mine, [](const Agreement& given) { return toJSON(given); });
  exhaust({"inspect::fingerprint"}, mine, [](const Agreement& given) { return fingerprint(given); });
  exhaust(
      {"inspect::differencesBetween"}, [] { return std::pair(mine(), theirs()); },
      [](const auto& ends) { return differencesBetween(ends.first, ends.second); });
  exhaust(
      {"inspect::toText(vector<Difference>, string, string)"},
      [] { return differencesBetween(mine(), theirs()); },
      [](const std::vector<Difference>& differences) { return toText(differences, name, value); });
}

TEST(TextWithoutMemory, IsMadePrintableOrNot) {
  exhaust({"inspect::printable"},
          [] { return printable("a text of escapes and letters \x1b \xff \xc3\xa9"); });
}

TEST(OffersWithoutMemory, AreTakenWrittenAndReadOrNot) {
  const auto protocols = ProtocolRegistry::create(name, value);
  protocols->registerProtocolInitializer(name, {}, {{name, value}, {"a", "1"}});
  exhaust({"inspect::offersOf"}, [&] { return offersOf(*protocols); });
  exhaust({"inspect::toJSON(Offers)"}, offers, [](const Offers& given) { return toJSON(given); });
  const auto text = toJSON(offers());
  exhaust({"inspect::toOffers"}, [&] { return toOffers(text); });
}

TEST(NegotiationWithoutMemory, IsSimulatedOrNot) {
  exhaust({"inspect::simulateAnswer"}, offers,
          [](const Offers& given) { return simulateAnswer(configs, given); });
}

TEST(NegotiationWithoutMemory, IsExplainedOrNot) {
  exhaust({"inspect::explain(vector<MessageProtocolConfig>, vector<MessageProtocolResolution>)"},
          [] { return explain(configs, resolutions); });
  exhaust({"inspect::explain(vector<MessageProtocolConfig>, vector<MessageProtocolResolution>, Offers)"},
          offers, [](const Offers& given) { return explain(configs, resolutions, given); });
  const auto explanation = [] { return explain(configs, resolutions); };
  const auto writtenBy = [](const auto& write) {
    std::string text;
    write([&](std::string_view piece) { text += piece; });
    return text;
  };
  exhaust({"inspect::writeJSON"}, explanation, [&](const Explanation& given) {
    return writtenBy([&](const TextSink& sink) { writeJSON(given, sink); });
  });
  exhaust({"inspect::writeText"}, explanation, [&](const Explanation& given) {
    return writtenBy([&](const TextSink& sink) { writeText(given, Colour::Off, sink); });
  });
  exhaust({"inspect::toJSON(Explanation)"}, explanation,
          [](const Explanation& given) { return toJSON(given); });
  for (const auto colour : {Colour::Off, Colour::On}) {
    exhaust({"inspect::toText(Explanation, Colour)"}, explanation,
            [&](const Explanation& given) { return toText(given, colour); });
  }
}

TEST(NegotiationWithoutMemory, IsJudgedOrNot) {
  exhaust({"inspect::judge"}, [] { return judge(configs, resolutions); });
}

// A document in which a good deal is wrong.
const std::string faulty =
    R"({"protocolConfigs":[{"features":[{"handling":"none of the words for it","name":"a","value":"b"},1],)"
    R"("name":"a name that is long enough for memory","a member that nobody reads":{"deep":[1,{"more":2}]},)"
    R"("version":{"major":1.5,"minor":0}},{"name":"","version":{}},2,{"name":"x","name":"y"}]})";

TEST(DiagnosisWithoutMemory, IsMadeOrNot) {
  const auto document = DocumentKind::ProtocolConfigs;
  exhaust({"inspect::documentKindOf"}, [] { return documentKindOf(faulty); });
  exhaust({"inspect::diagnose(DocumentKind, string_view)"}, [&] { return diagnose(document, faulty); });
  exhaust({"inspect::diagnose(string_view)"}, [] { return diagnose(faulty); });
  exhaust({"inspect::diagnose(string_view)"},
          [] { return diagnose(std::string_view(faulty).substr(0, 99)); });

  std::size_t count = 0;
  const FindingVisitor visit = [&count](const Finding& finding) {
    ++count;
    return !finding.message.empty();
  };
  const auto counting = [&](const auto& call) {
    return [&, call] {
      count = 0;
      call();
      return count;
    };
  };
  exhaust({"inspect::diagnose(DocumentKind, string_view, function<bool (Finding)>)"},
          counting([&] { diagnose(document, faulty, visit); }));
  exhaust({"inspect::diagnose(string_view, function<bool (Finding)>)"},
          counting([&] { diagnose(faulty, visit); }));
}

}  // namespace
}  // namespace foundation::corvane::inspect
