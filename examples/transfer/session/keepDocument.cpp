// SPDX-License-Identifier: Apache-2.0
#include "session/keepDocument.hpp"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace transfer {

namespace {

std::filesystem::path pathOf(const std::string& folder, const std::string& name) {
  return std::filesystem::path(folder) / (name + ".json");
}

}  // namespace

void prepareDocumentFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!std::filesystem::is_directory(folder, error)) throw std::runtime_error(folder + " is no folder");
  // What an earlier negotiation left behind would explain this one wrongly, should it end too early.
  for (const auto* name : {"request", "answer", "offers"}) {
    std::filesystem::remove(pathOf(folder, name), error);
  }
}

void keepDocument(const std::string& folder, const std::string& name, const std::string& document) {
  if (folder.empty()) return;
  const auto path = pathOf(folder, name);
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file << document << std::flush;
  if (!file) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace transfer
