// SPDX-License-Identifier: Apache-2.0
#include "report.hpp"

#include <cstddef>
#include <string>
#include <utility>

#include "complain.hpp"
#include "foundation/json.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;
namespace json = foundation::json;

namespace {

const char* colourOf(inspect::Verdict verdict) {
  if (verdict == inspect::Verdict::Agreed) return "\x1b[32m";
  return verdict == inspect::Verdict::Degraded ? "\x1b[33m" : "\x1b[31m";
}

// The first reasons that refuse, or of the others; --json has all of them.
std::string reasonsOf(const inspect::Judgement& judgement, bool refuse) {
  constexpr std::size_t most = 20;
  std::string text;
  std::size_t count = 0;
  for (const auto& reason : judgement.reasons) {
    if (reason.refuses != refuse || ++count > most) continue;
    if (!text.empty()) text += "; ";
    text += printable(reason.sentence) + " [" + toCString(reason.ground) + ']';
  }
  if (count > most) text += "; and " + std::to_string(count - most) + " more";
  return text;
}

std::string verdictLine(const inspect::Judgement& judgement, inspect::Colour colour) {
  std::string line = toCString(judgement.verdict);
  if (colour == inspect::Colour::On) line = colourOf(judgement.verdict) + line + "\x1b[0m";
  const auto refusing = reasonsOf(judgement, true);
  const auto others = reasonsOf(judgement, false);
  if (!refusing.empty()) line += ": " + refusing;
  if (!others.empty()) line += (refusing.empty() ? ": " : "; besides: ") + others;
  return line + '\n';
}

json::Value toValue(const inspect::Judgement& judgement) {
  json::Array reasons;
  for (const auto& reason : judgement.reasons) {
    reasons.emplace_back(json::Object{{"ground", toCString(reason.ground)},
                                      {"refuses", reason.refuses},
                                      {"protocol", reason.protocol},
                                      {"feature", reason.feature},
                                      {"sentence", reason.sentence}});
  }
  return json::Object{{"verdict", toCString(judgement.verdict)}, {"reasons", std::move(reasons)}};
}

}  // namespace

ExitStatus report(const inspect::Explanation& explanation, const inspect::Judgement& judgement,
                  const Options& options, Output& out) {
  if (options.json) {
    out.write(R"({"explanation":)");
    out.write(toJSON(explanation));
    out.write(R"(,"judgement":)");
    out.write(json::serialize(toValue(judgement)));
    out.write("}\n");
  } else {
    out.write(toText(explanation, options.colour));
    out.write(verdictLine(judgement, options.colour));
  }
  return toExitStatus(judgement.verdict);
}

}  // namespace negotiate
