// SPDX-License-Identifier: Apache-2.0
#include "report.hpp"

#include <cstddef>
#include <string>
#include <string_view>

#include "findingText.hpp"
#include "foundation/corvane/inspect/diagnose.hpp"
#include "foundation/corvane/inspect/printable.hpp"
#include "foundation/corvane/inspect/text/wellFormed.hpp"
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
    text += inspect::printable(reason.sentence) + " [" + toCString(reason.kind) + ']';
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

std::string asJson(const inspect::Reason& reason) {
  return inspect::detail::wellFormed(json::serialize(json::Object{{"kind", toCString(reason.kind)},
                                                                  {"refuses", reason.refuses},
                                                                  {"protocol", reason.protocol},
                                                                  {"feature", reason.feature},
                                                                  {"sentence", reason.sentence}}));
}

// Writes the elements of an array, one by one, with what stands between them.
class Elements {
 public:
  explicit Elements(Output& out) : out_(out) {}

  void write(std::string_view element) {
    if (!isFirst_) out_.write(",");
    isFirst_ = false;
    out_.write(element);
  }

 private:
  Output& out_;
  bool isFirst_ = true;
};

void writeFindings(const DocumentFile& document, Elements& elements, const Output& out) {
  inspect::diagnose(document.kind, document.text, [&](const inspect::Finding& finding) {
    elements.write(toJson(document.file, document.kind, finding));
    return !out.abandoned();
  });
}

void writeJson(const inspect::Judgement& judgement, Output& out) {
  out.write(R"({"reasons":[)");
  Elements elements(out);
  for (const auto& reason : judgement.reasons) elements.write(asJson(reason));
  out.write(R"(],"verdict":")");
  out.write(toCString(judgement.verdict));
  out.write("\"}");
}

}  // namespace

void report(const std::vector<DocumentFile>& documents, const Options& options, Output& out) {
  if (!options.json) return;
  out.write(R"({"findings":[)");
  Elements elements(out);
  for (const auto& document : documents) writeFindings(document, elements, out);
  out.write("]");
}

void report(const inspect::Explanation& explanation, const Options& options, Output& out) {
  const auto write = [&](std::string_view text) { out.write(text); };
  if (!options.json) return writeText(explanation, options.colour, write);
  out.write(R"(,"explanation":)");
  writeJSON(explanation, write);
}

ExitStatus report(const inspect::Judgement& judgement, const Options& options, Output& out) {
  if (options.json) {
    out.write(R"(,"judgement":)");
    writeJson(judgement, out);
    out.write("}\n");
  } else {
    out.write(verdictLine(judgement, options.colour));
  }
  return toExitStatus(judgement.verdict);
}

}  // namespace negotiate
