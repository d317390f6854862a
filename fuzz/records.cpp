// SPDX-License-Identifier: Apache-2.0
// Single records: read alone, and as the only element of a list.
#include "fuzz/model/records.hpp"

#include <string>
#include <vector>

#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "fuzz/check.hpp"

namespace {

template <class Record>
void checkAlone(const Record& record, const Record& expected, Record (*read)(const std::string&)) {
  FUZZ_CHECK(record == expected);
  FUZZ_CHECK(read(Record::toJson(record)) == record);
}

// The element of a list. None where the text is no object, or nested too deep in a list.
template <class Record>
void checkListed(const Record& record, const std::vector<Record>& list) {
  FUZZ_CHECK(list.size() <= 1);
  if (!list.empty()) FUZZ_CHECK(list.front() == record);
}

}  // namespace

void fuzz::look(std::string_view input) {
  const std::string text(input);
  const auto tree = readNode(text);

  const auto config = session::MessageProtocolConfig::toMessageProtocolConfig(text);
  const auto resolution = session::MessageProtocolResolution::toMessageProtocolResolution(text);
  const auto feature = session::FeatureResolution::toFeatureResolution(text);
  checkAlone(config, configOf(tree), &session::MessageProtocolConfig::toMessageProtocolConfig);
  checkAlone(resolution, resolutionOf(tree),
             &session::MessageProtocolResolution::toMessageProtocolResolution);
  checkAlone(feature, featureOf(tree), &session::FeatureResolution::toFeatureResolution);

  if (!tree) return;  // what is no value may well be two in a list
  checkListed(config, session::toConfigs(R"({"protocolConfigs":[)" + text + "]}"));
  checkListed(resolution, session::toResolutions(R"({"protocolResolutions":[)" + text + "]}"));
  const auto holder = session::toResolutions(
      R"({"protocolResolutions":[{"name":"p","version":{},"resolutions":[)" + text + "]}]}");
  if (!holder.empty()) checkListed(feature, holder.front().resolutions);
}
