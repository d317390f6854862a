// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace negotiate {

/// The rows of a table, all of one length; the first one holds the headings.
using Table = std::vector<std::vector<std::string>>;

/// A line for each row, its columns as wide as their texts need, counted in UTF-8 characters.
std::string toText(const Table& table);

/// A table as Markdown knows it; nothing in a cell counts as markup.
std::string toMarkdown(const Table& table);

}  // namespace negotiate
