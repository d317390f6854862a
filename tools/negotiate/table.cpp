// SPDX-License-Identifier: Apache-2.0
#include "table.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "foundation/corvane/inspect/printable.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

// Every byte but those that continue a character.
std::size_t widthOf(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xc0U) != 0x80U; }));
}

std::vector<std::size_t> widthsOf(const Table& table) {
  std::vector<std::size_t> widths(table.front().size());
  for (const auto& row : table) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], widthOf(inspect::printable(row[column])));
    }
  }
  return widths;
}

std::string escaped(std::string_view text) {
  constexpr std::string_view markup = R"(\`*_[]<>|~&#)";
  std::string result;
  for (const char c : text) {
    if (markup.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

}  // namespace

std::string toText(const Table& table) {
  const auto widths = widthsOf(table);
  std::string text;
  for (const auto& row : table) {
    std::size_t missing = 0;
    for (std::size_t column = 0; column < row.size(); ++column) {
      const auto cell = inspect::printable(row[column]);
      text.append(missing, ' ');
      text += cell;
      missing = widths[column] - widthOf(cell) + 2;
    }
    text += '\n';
  }
  return text;
}

std::string toMarkdown(const Table& table) {
  std::string text;
  for (const auto& row : table) {
    for (const auto& cell : row) text += "| " + escaped(inspect::printable(cell)) + ' ';
    text += "|\n";
    if (&row != &table.front()) continue;
    for (std::size_t column = 0; column < row.size(); ++column) text += "|---";
    text += "|\n";
  }
  return text;
}

}  // namespace negotiate
