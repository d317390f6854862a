// SPDX-License-Identifier: Apache-2.0
#include "transport/TemporaryFolder.hpp"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace transfer {

TemporaryFolder::TemporaryFolder() {
  std::string name = std::filesystem::temp_directory_path() / "transfer-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder like " + name);
  path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace transfer
