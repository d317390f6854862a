// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "foundation/corvane/common/session/FeatureHandling.hpp"
#include "foundation/corvane/common/session/FeatureStatus.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
#include "tests/frozen/frozen.hpp"

namespace foundation::corvane::common::session {
namespace {

using corvane::tests::expectFrozen;

const std::string awkward =
    "\"quoted\" back\\slash /slash \b\f\n\r\t \x01\x1f\x7f z\xc3\xbcrich \xe2\x82\xac";

class Text {
 public:
  void add(const std::string& title, const std::string& document) {
    os_ << title << ":\n" << document << "\n";
  }
  std::string str() const { return os_.str(); }

 private:
  std::ostringstream os_;
};

TEST(FrozenDocuments, OfRequests) {
  Text text;
  std::vector<FeatureRequest> everyHandling;
  for (std::uint32_t handling = 0; handling <= 4; ++handling) {
    everyHandling.push_back(
        {"feature " + std::to_string(handling), "on", static_cast<FeatureHandling>(handling)});
  }

  text.add("no request", toJSON(std::vector<MessageProtocolConfig>{}));
  text.add("a default request", toJSON(std::vector<MessageProtocolConfig>(1)));
  text.add("two requests, with and without features",
           toJSON(std::vector<MessageProtocolConfig>{{"Telemetry",
                                                      {2, 1},
                                                      {{"compression", "lz4", FeatureHandling::required},
                                                       {"batching", "on", FeatureHandling::preferred}}},
                                                     {"Debug", {1, 0}, {}}}));
  text.add("every handling, and one without a name",
           toJSON(std::vector<MessageProtocolConfig>{{"Telemetry", {1, 0}, everyHandling}}));
  text.add("large versions", toJSON(std::vector<MessageProtocolConfig>{{"a", {0, 1000000}, {}},
                                                                       {"b", {65535, 0}, {}},
                                                                       {"c", undefinedVersion, {}},
                                                                       {"d", {4294967295, 16777217}, {}}}));
  text.add("bytes of all kinds",
           toJSON(std::vector<MessageProtocolConfig>{
               {awkward, {1, 0}, {{awkward, awkward, FeatureHandling::optional}, {"", "", {}}}}}));
  text.add("one request alone",
           MessageProtocolConfig::toJson(
               {"Telemetry", {2, 1}, {{"compression", "lz4", FeatureHandling::required}}}));

  expectFrozen("requests.txt", text.str());
}

TEST(FrozenDocuments, OfAnswers) {
  Text text;
  std::vector<FeatureResolution> everyStatus;
  for (std::uint32_t status = 0; status <= 7; ++status) {
    everyStatus.emplace_back("feature " + std::to_string(status), "on", static_cast<FeatureStatus>(status));
  }

  text.add("no answer", toJSON(std::vector<MessageProtocolResolution>{}));
  text.add("a default answer", toJSON(std::vector<MessageProtocolResolution>(1)));
  text.add("two answers, with and without features",
           toJSON(std::vector<MessageProtocolResolution>{
               {"Telemetry",
                {2, 0},
                {{"compression", "lz4", FeatureStatus::success},
                 {"batching", "on", FeatureStatus::unsupported_warning}}},
               {"Debug", {1, 0}, {}}}));
  text.add("every status, and one without a name",
           toJSON(std::vector<MessageProtocolResolution>{{"Telemetry", {1, 0}, everyStatus}}));
  text.add("bytes of all kinds",
           toJSON(std::vector<MessageProtocolResolution>{
               {awkward, {1, 0}, {{awkward, awkward, FeatureStatus::success}, {"", "", {}}}}}));
  text.add("one answer alone", MessageProtocolResolution::toJson(
                                   {"Telemetry", {2, 0}, {{"compression", "lz4", FeatureStatus::success}}}));
  text.add("one feature's outcome alone",
           FeatureResolution::toJson({"compression", "gzip", FeatureStatus::invalid_value_error}));

  expectFrozen("answers.txt", text.str());
}

}  // namespace
}  // namespace foundation::corvane::common::session
