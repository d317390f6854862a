// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Explanation.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/corvane/common/uuid/versionText.hpp"
#include "foundation/corvane/inspect/printable.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect {

using common::session::FeatureHandling;
using common::session::undefinedVersion;

namespace {

enum Column : std::size_t { ProtocolName, FeatureName, Asked, Strength, Offered, Outcome, Why, columnCount };

constexpr std::string_view green = "\x1b[32m";
constexpr std::string_view yellow = "\x1b[33m";
constexpr std::string_view red = "\x1b[31m";
constexpr std::string_view plain = "\x1b[0m";

struct Row {
  std::array<std::string, columnCount> cells;
  std::string_view colour;  // of the outcome
};

// An empty text, or one with blanks at its ends, would not be seen in a table, and a long one would hide it.
std::string cell(const std::string& text) {
  constexpr std::size_t most = 120;
  if (text.size() > most) return detail::quoted(text, most);
  if (text.empty() || text.front() == ' ' || text.back() == ' ') return detail::quoted(text, text.size());
  return printable(text, Backslashes::Doubled);
}

std::string cell(const std::pair<unsigned, unsigned>& version) {
  return version == undefinedVersion ? std::string("none") : common::toString(version);
}

// The sentences tell more where it matters.
std::string cell(const std::vector<std::string>& values) {
  constexpr std::size_t most = 5;
  std::string list;
  for (std::size_t i = 0; i < std::min(values.size(), most); ++i) {
    if (i > 0) list += ", ";
    list += cell(values[i]);
  }
  return values.size() > most ? list + ", ..." : list;
}

std::string_view colourOf(ProtocolOutcome outcome) {
  switch (outcome) {
    case ProtocolOutcome::Agreed:
      return green;
    case ProtocolOutcome::OlderVersion:
    case ProtocolOutcome::NewerVersion:
      return yellow;
    case ProtocolOutcome::RequestWithoutVersion:
    case ProtocolOutcome::Unreadable:
    case ProtocolOutcome::NotOffered:
    case ProtocolOutcome::Declined:
    case ProtocolOutcome::NotOfferedOrDeclined:
    case ProtocolOutcome::VersionConflict:
    case ProtocolOutcome::AnswerWithoutVersion:
      break;
  }
  return red;
}

std::string_view colourOf(const FeatureExplanation& feature) {
  if (feature.outcome == FeatureOutcome::Accepted) return green;
  if (feature.outcome == FeatureOutcome::ProtocolLost) return red;
  return feature.handling == FeatureHandling::required ? red : yellow;
}

Row rowOf(const ProtocolExplanation& protocol) {
  const auto offered = protocol.answered == undefinedVersion ? std::string() : cell(protocol.answered);
  return {
      {cell(protocol.name), "", cell(protocol.asked), "", offered, toCString(protocol.outcome), protocol.why},
      colourOf(protocol.outcome)};
}

Row rowOf(const ProtocolExplanation& protocol, const FeatureExplanation& feature) {
  return {{cell(protocol.name), cell(feature.name), cell(feature.value), toString(feature.handling),
           cell(feature.offered), toCString(feature.outcome), feature.why},
          colourOf(feature)};
}

Row rowOf(const UnaskedAnswer& unasked) {
  return {{cell(unasked.protocol), unasked.isFeature ? cell(unasked.feature) : "", "", "",
           unasked.isFeature ? cell(unasked.value) : cell(unasked.version), "unasked", unasked.why},
          yellow};
}

// Rows are made as they are wanted, twice: all of them at once would take several times the memory of what
// they tell.
template <class Visit>
void forEachRow(const Explanation& explanation, const Visit& visit) {
  visit(Row{{"protocol", "feature", "asked", "strength", "offered", "outcome", "why"}, {}});
  for (const auto& protocol : explanation.protocols) {
    visit(rowOf(protocol));
    for (const auto& feature : protocol.features) visit(rowOf(protocol, feature));
  }
  for (const auto& unasked : explanation.unasked) visit(rowOf(unasked));
}

// In UTF-8 characters.
std::size_t widthOf(std::string_view text) {
  const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80; };
  return static_cast<std::size_t>(std::ranges::count_if(text, begins));
}

using Widths = std::array<std::size_t, columnCount>;

Widths widthsOf(const Explanation& explanation) {
  constexpr std::size_t most = 40;
  Widths widths{};
  forEachRow(explanation, [&](const Row& row) {
    for (std::size_t i = 0; i < Why; ++i) {
      widths[i] = std::min(most, std::max(widths[i], widthOf(row.cells[i])));
    }
  });
  return widths;
}

void appendRow(std::string& out, const Row& row, const Widths& widths, Colour colour) {
  for (std::size_t i = 0; i < Why; ++i) {
    const auto& text = row.cells[i];
    const bool isColoured = colour == Colour::On && i == Outcome && !row.colour.empty();
    if (isColoured) out += row.colour;
    out += text;
    if (isColoured) out += plain;
    out.append(widths[i] - std::min(widths[i], widthOf(text)) + 2, ' ');
  }
  out += row.cells[Why];
  out += '\n';
}

}  // namespace

void writeText(const Explanation& explanation, Colour colour, const TextSink& write) {
  if (explanation.protocols.empty() && explanation.unasked.empty()) {
    return write("No protocol was asked for, and the answer has none.\n");
  }
  const auto widths = widthsOf(explanation);
  std::string line;
  forEachRow(explanation, [&](Row row) {
    if (explanation.negotiationFails && row.colour == green) row.colour = red;
    line.clear();
    appendRow(line, row, widths, colour);
    write(line);
  });
}

std::string toText(const Explanation& explanation, Colour colour) {
  std::string text;
  writeText(explanation, colour, [&](std::string_view line) { text += line; });
  return text;
}

}  // namespace foundation::corvane::inspect
