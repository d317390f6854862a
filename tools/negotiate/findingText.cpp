// SPDX-License-Identifier: Apache-2.0
#include "findingText.hpp"

#include <cstdint>

#include "foundation/corvane/inspect/printable.hpp"
#include "foundation/corvane/inspect/text/wellFormed.hpp"
#include "foundation/json.hpp"
#include "readFile.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;
namespace json = foundation::json;

std::string toLine(const std::string& file, const inspect::Finding& finding) {
  auto line = shownName(file) + ':' + std::to_string(finding.line) + ':' + std::to_string(finding.column) +
              ": " + finding.message + " [" + toCString(finding.rule) + ']';
  if (!finding.pointer.empty()) line += ' ' + finding.pointer;
  return inspect::printable(line);
}

std::string toJson(const std::string& file, inspect::DocumentKind document, const inspect::Finding& finding) {
  const auto number = [](std::size_t value) { return json::Value(static_cast<std::uint64_t>(value)); };
  return inspect::detail::wellFormed(
      json::serialize(json::Object{{"file", shownName(file)},
                                   {"document", inspect::listName(document)},
                                   {"rule", inspect::toCString(finding.rule)},
                                   {"effect", inspect::toCString(finding.effect)},
                                   {"pointer", finding.pointer},
                                   {"offset", number(finding.offset)},
                                   {"line", number(finding.line)},
                                   {"column", number(finding.column)},
                                   {"message", finding.message}}));
}

}  // namespace negotiate
