// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Explanation.hpp"

#include "foundation/corvane/common/session/documentWriter.hpp"
#include "foundation/corvane/inspect/text/wellFormed.hpp"
#include "foundation/json/serialize.hpp"

namespace foundation::corvane::inspect {

using common::session::undefinedVersion;

namespace {

template <class Elements, class Append>
void appendArray(std::string& out, const Elements& elements, const Append& append) {
  out += '[';
  for (const auto& element : elements) {
    if (&element != &elements.front()) out += ',';
    append(out, element);
  }
  out += ']';
}

// Begins with a comma or a brace, as the name has it.
void appendMember(std::string& out, std::string_view start, std::string_view text) {
  out += start;
  json::appendQuoted(out, text);
}

void appendVersion(std::string& out, const std::pair<unsigned, unsigned>& version) {
  if (version == undefinedVersion) {
    out += "null";
  } else {
    common::session::detail::appendObject<common::session::detail::VersionTable>(out, version);
  }
}

void appendFeature(std::string& out, const FeatureExplanation& feature) {
  appendMember(out, R"({"handling":)", toString(feature.handling));
  appendMember(out, R"(,"name":)", feature.name);
  out += R"(,"offered":)";
  appendArray(out, feature.offered, json::appendQuoted);
  appendMember(out, R"(,"outcome":)", toCString(feature.outcome));
  appendMember(out, R"(,"status":)", toString(feature.status));
  appendMember(out, R"(,"value":)", feature.value);
  appendMember(out, R"(,"why":)", feature.why);
  out += '}';
}

void appendUnasked(std::string& out, const UnaskedAnswer& unasked) {
  appendMember(out, R"({"feature":)", unasked.feature);
  out += R"(,"isFeature":)";
  out += unasked.isFeature ? "true" : "false";
  appendMember(out, R"(,"protocol":)", unasked.protocol);
  appendMember(out, R"(,"status":)", toString(unasked.status));
  appendMember(out, R"(,"value":)", unasked.value);
  out += R"(,"version":)";
  appendVersion(out, unasked.version);
  appendMember(out, R"(,"why":)", unasked.why);
  out += '}';
}

// The text until now, of which each element is handed out when it is whole.
class Pieces {
 public:
  explicit Pieces(const TextSink& write) : write_(write) {}

  std::string& text() { return text_; }

  void handOut() {
    write_(detail::wellFormed(text_));
    text_.clear();
  }

  template <class Elements, class Append>
  void appendArray(const Elements& elements, const Append& append) {
    inspect::appendArray(text_, elements, [&](std::string& out, const auto& element) {
      append(out, element);
      handOut();
    });
  }

 private:
  const TextSink& write_;
  std::string text_;
};

void appendProtocol(Pieces& pieces, const ProtocolExplanation& protocol) {
  auto& out = pieces.text();
  out += R"({"answered":)";
  appendVersion(out, protocol.answered);
  out += R"(,"asked":)";
  appendVersion(out, protocol.asked);
  out += R"(,"features":)";
  pieces.appendArray(protocol.features, appendFeature);
  appendMember(out, R"(,"name":)", protocol.name);
  appendMember(out, R"(,"outcome":)", toCString(protocol.outcome));
  appendMember(out, R"(,"why":)", protocol.why);
  out += '}';
}

}  // namespace

void writeJSON(const Explanation& explanation, const TextSink& write) {
  Pieces pieces(write);
  auto& out = pieces.text();
  out += R"({"protocols":)";
  pieces.appendArray(explanation.protocols, [&](std::string&, const ProtocolExplanation& protocol) {
    appendProtocol(pieces, protocol);
  });
  out += R"(,"unasked":)";
  pieces.appendArray(explanation.unasked, appendUnasked);
  out += '}';
  pieces.handOut();
}

std::string toJSON(const Explanation& explanation) {
  std::string out;
  writeJSON(explanation, [&](std::string_view piece) { out += piece; });
  return out;
}

}  // namespace foundation::corvane::inspect
