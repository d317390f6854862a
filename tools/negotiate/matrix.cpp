// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "commands.hpp"
#include "documents.hpp"
#include "foundation/corvane/inspect/simulateAnswer.hpp"
#include "judgeDocuments.hpp"
#include "readFile.hpp"
#include "table.hpp"

namespace negotiate {

namespace inspect = foundation::corvane::inspect;

namespace {

std::string headingOf(const inspect::Offers& offers, const std::string& file) {
  if (offers.softwareName.empty()) return shownName(file);
  return offers.softwareVersion.empty() ? offers.softwareName
                                        : offers.softwareName + ' ' + offers.softwareVersion;
}

// Servers that call themselves the same are told apart by their files.
void distinguish(std::vector<std::string>& headings, const std::vector<std::string>& files) {
  const auto all = headings;
  for (std::size_t i = 0; i < headings.size(); ++i) {
    if (std::ranges::count(all, all[i]) > 1 && all[i] != shownName(files[i])) {
      headings[i] += " (" + shownName(files[i]) + ')';
    }
  }
}

// The verdict and, where it is not the best, its reasons, each once: first those that refuse.
std::string cellOf(const inspect::Judgement& judgement) {
  std::string cell = toCString(judgement.verdict);
  std::vector<std::string_view> told;
  for (const bool refuse : {true, false}) {
    for (const auto& reason : judgement.reasons) {
      const std::string_view kind = toCString(reason.kind);
      if (reason.refuses != refuse || std::ranges::find(told, kind) != told.end()) continue;
      cell += told.empty() ? ": " : ", ";
      cell += kind;
      told.push_back(kind);
    }
  }
  return cell;
}

}  // namespace

ExitStatus matrix(const Options& options, Output& out) {
  std::vector<inspect::Offers> servers;
  std::vector<std::string> headings;
  for (const auto& file : options.files) {
    servers.push_back(toOffers(readDocument(file, inspect::DocumentKind::ProtocolOffers)));
    headings.push_back(headingOf(servers.back(), file));
  }
  distinguish(headings, options.files);
  headings.insert(headings.begin(), "request");
  Table table{headings};

  auto worst = inspect::Verdict::Agreed;
  for (const auto& file : options.requests) {
    const auto request = toRequest(readDocument(file, inspect::DocumentKind::ProtocolConfigs));
    auto& row = table.emplace_back();
    row.push_back(shownName(file));
    for (const auto& offers : servers) {
      const Answer answer{inspect::simulateAnswer(request.records, offers)};
      const auto judgement = judgeDocuments(request, answer, options.refusals);
      row.push_back(cellOf(judgement));
      worst = std::max(worst, judgement.verdict);
    }
  }

  out.write(options.markdown ? toMarkdown(table) : toText(table));
  return toExitStatus(worst);
}

}  // namespace negotiate
