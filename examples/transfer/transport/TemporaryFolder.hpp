// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>

namespace transfer {

/// A folder that only this user can enter, gone with this object together with all that is in it.
class TemporaryFolder {
 public:
  /// @throws std::runtime_error if the system's folder for temporary files cannot be written.
  TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder();

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace transfer
