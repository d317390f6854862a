// SPDX-License-Identifier: Apache-2.0
// Versions: two JSON values, one a line, become the members of a version's object. Read by us from a tree and
// from a document, and by the conversions of Boost.
#include "foundation/corvane/common/session/undefinedVersion.hpp"

#include <array>
#include <boost/numeric/conversion/cast.hpp>
#include <cstdio>
#include <string>
#include <utility>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/json.hpp"
#include "fuzz/check.hpp"

namespace {

namespace json = foundation::json;
namespace session = foundation::corvane::common::session;
using Version = std::pair<unsigned, unsigned>;

bool isJson(std::string_view text) {
  json::Reader reader(text);
  while (reader.next() != json::Token::End) {
    if (reader.token() == json::Token::Error) return false;
  }
  return true;
}

// What is no number counts as 0, as what is not there.
double numberOf(const json::Object& object, const char* name) {
  const auto found = object.find(name);
  if (found == object.end()) return 0.0;
  if (const auto* integer = found->second.find<std::int64_t>()) return static_cast<double>(*integer);
  if (const auto* natural = found->second.find<std::uint64_t>()) return static_cast<double>(*natural);
  const auto* number = found->second.find<double>();
  return number != nullptr ? *number : 0.0;
}

Version readByBoost(double majorNumber, double minorNumber) {
  try {
    return {boost::numeric_cast<unsigned>(majorNumber + 0.01),
            boost::numeric_cast<unsigned>(minorNumber + 0.01)};
  } catch (const boost::numeric::bad_numeric_cast&) {
    return session::undefinedVersion;
  }
}

std::string written(const Version& version) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%u.%u", version.first, version.second);
  return text.data();
}

void checkTexts(const Version& version) {
  FUZZ_CHECK(foundation::corvane::common::toString(version) == written(version));
  const auto object = session::detail::toJsonObject(version);
  FUZZ_CHECK(object ==
             (json::Object{{"major", double{1} * version.first}, {"minor", double{1} * version.second}}));
  FUZZ_CHECK(session::detail::parseVersion(object) == version);
  const session::MessageProtocolConfig config("p", version, {});
  const auto back =
      session::MessageProtocolConfig::toMessageProtocolConfig(session::MessageProtocolConfig::toJson(config));
  FUZZ_CHECK(back == (version.first == 65535 ? session::MessageProtocolConfig() : config));
}

// The same members in documents, where no tree is built.
void checkDocuments(const std::string& members, const Version& version) {
  const auto text = R"({"name":"p","version":)" + members + "}";
  if (!isJson(text)) return;  // nested too deep here, and not alone
  const auto config = session::MessageProtocolConfig::toMessageProtocolConfig(text);
  const auto resolution = session::MessageProtocolResolution::toMessageProtocolResolution(text);
  if (version.first == 65535) {
    FUZZ_CHECK(config == session::MessageProtocolConfig());
    FUZZ_CHECK(resolution == session::MessageProtocolResolution());
  } else {
    FUZZ_CHECK(config == session::MessageProtocolConfig("p", version, {}));
    FUZZ_CHECK(resolution == session::MessageProtocolResolution("p", version, {}));
  }
}

}  // namespace

void fuzz::look(std::string_view input) {
  const auto feed = input.find('\n');
  const auto majorText = input.substr(0, feed);
  const auto minorText = feed == std::string_view::npos ? std::string_view() : input.substr(feed + 1);
  json::Object object;
  std::string members;
  if (isJson(majorText)) {
    object["major"] = json::parse(majorText);
    members = "\"major\":" + std::string(majorText);
  }
  if (isJson(minorText)) {
    object["minor"] = json::parse(minorText);
    members += (members.empty() ? "\"minor\":" : ",\"minor\":") + std::string(minorText);
  }

  const auto version = session::detail::parseVersion(object);

  FUZZ_CHECK(version == readByBoost(numberOf(object, "major"), numberOf(object, "minor")));
  checkTexts(version);
  checkDocuments('{' + members + '}', version);

  // Any pair at all: the bytes of the input.
  std::array<unsigned, 2> pair{};
  input.copy(reinterpret_cast<char*>(pair.data()), sizeof pair);
  checkTexts({pair[0], pair[1]});
}
