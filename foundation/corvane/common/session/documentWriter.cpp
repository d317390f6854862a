// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/session/documentWriter.hpp"

#include <array>
#include <charconv>
#include <limits>
#include <utility>

#include "foundation/corvane/common/session/featureNames.hpp"
#include "foundation/json/serialize.hpp"

namespace foundation::corvane::common::session::detail {

namespace {

void appendNumber(std::string& out, unsigned number) {
  std::array<char, std::numeric_limits<unsigned>::digits10 + 1> digits;
  out.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr);
}

void appendVersion(std::string& out, const std::pair<unsigned, unsigned>& version) {
  out += R"({"major":)";
  appendNumber(out, version.first);
  out += R"(,"minor":)";
  appendNumber(out, version.second);
  out += '}';
}

}  // namespace

void appendJson(std::string& out, const FeatureRequest& request) {
  out += R"({"handling":")";
  out += nameOf(request.handling);
  out += R"(","name":)";
  json::appendQuoted(out, request.name);
  out += R"(,"value":)";
  json::appendQuoted(out, request.value);
  out += '}';
}

void appendJson(std::string& out, const MessageProtocolConfig& config) {
  out += R"({"features":)";
  appendArray(out, config.features);
  out += R"(,"name":)";
  json::appendQuoted(out, config.name);
  out += R"(,"version":)";
  appendVersion(out, config.version);
  out += '}';
}

void appendJson(std::string& out, const FeatureResolution& resolution) {
  out += R"({"message":)";
  json::appendQuoted(out, resolution.message);
  out += R"(,"name":)";
  json::appendQuoted(out, resolution.name);
  out += R"(,"status":")";
  out += nameOf(resolution.status);
  out += R"("})";
}

void appendJson(std::string& out, const MessageProtocolResolution& resolution) {
  out += R"({"name":)";
  json::appendQuoted(out, resolution.name);
  out += R"(,"resolutions":)";
  appendArray(out, resolution.resolutions);
  out += R"(,"version":)";
  appendVersion(out, resolution.version);
  out += '}';
}

}  // namespace foundation::corvane::common::session::detail
