// SPDX-License-Identifier: Apache-2.0
// Feeds files through a harness without a fuzzer: each file, and everything that it could be cut down to.
// Usage: replay FILE-OR-FOLDER...
#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fuzz/check.hpp"
#include "fuzz/hostileLocale.hpp"

namespace {

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& path) {
  if (!std::filesystem::is_directory(path)) return {path};
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string contentOf(const std::filesystem::path& path) {
  std::string content(std::filesystem::file_size(path), '\0');
  std::ifstream in(path, std::ios::binary);
  if (!in.read(content.data(), static_cast<std::streamsize>(content.size()))) {
    throw std::runtime_error("cannot read " + path.string());
  }
  return content;
}

// In memory of its own without a byte to spare, so that a sanitizer sees whoever reads on.
void lookAt(std::string_view text) {
  const std::vector<char> copy(text.begin(), text.end());
  fuzz::look({copy.data(), copy.size()});
}

void lookAtFile(const std::filesystem::path& path) {
  constexpr std::size_t mostCuts = 512;
  const auto content = contentOf(path);
  const auto step = 1 + content.size() / mostCuts;
  for (std::size_t size = 0; size < content.size(); size += step) lookAt({content.data(), size});
  lookAt(content);
}

}  // namespace

int main(int argc, char** argv) {
  fuzz::setHostileLocale();
  try {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
      for (const auto& file : filesOf(argv[i])) {
        std::cerr << file.filename().string() << '\n';  // the last one to be seen is the one that failed
        lookAtFile(file);
        ++count;
      }
    }
    if (count == 0) throw std::runtime_error("usage: replay FILE-OR-FOLDER..., and there has to be a file");
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
