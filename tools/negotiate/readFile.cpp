// SPDX-License-Identifier: Apache-2.0
#include "readFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <system_error>

namespace negotiate {

namespace {

[[noreturn]] void fail(const std::string& file) {
  throw InputError("cannot read " + shownName(file) + ": " + std::generic_category().message(errno));
}

class Descriptor {
 public:
  explicit Descriptor(const std::string& file)
      : fd_(file == "-" ? dup(STDIN_FILENO) : open(file.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (fd_ < 0) fail(file);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(fd_); }

  int get() const { return fd_; }

 private:
  int fd_;
};

// What is still to come from a file of known size; 0 where nobody knows.
std::size_t expectedSize(int fd) {
  struct stat status {};
  if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
  const auto position = lseek(fd, 0, SEEK_CUR);
  return position < 0 || position >= status.st_size ? 0 : static_cast<std::size_t>(status.st_size - position);
}

}  // namespace

std::string shownName(const std::string& file) {
  return file == "-" ? "<stdin>" : file;
}

std::string readFile(const std::string& file) {
  constexpr std::size_t least = 1U << 16U;
  const Descriptor input(file);
  std::string text;
  // One byte more than expected: the read that fills no more of it tells the end, and nothing is copied.
  text.resize(std::max(least, expectedSize(input.get()) + 1));
  std::size_t size = 0;
  while (true) {
    if (size == text.size()) text.resize(2 * size);
    const auto got = read(input.get(), text.data() + size, text.size() - size);
    if (got == 0) break;
    if (got > 0) {
      size += static_cast<std::size_t>(got);
    } else if (errno != EINTR) {
      fail(file);
    }
  }
  text.resize(size);
  return text;
}

}  // namespace negotiate
