// SPDX-License-Identifier: Apache-2.0
#include "Program.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace negotiate::tests {

namespace {

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {
    if (fd < 0) throw std::runtime_error("no descriptor");
  }
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

struct Pipe {
  Descriptor from;
  Descriptor to;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

Descriptor pipeWith(const std::string& text) {
  auto pipe = makePipe();
  if (write(pipe.to.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("more than a pipe takes");
  }
  return std::move(pipe.from);
}

Descriptor makeFile() {
  return Descriptor(memfd_create("output", MFD_CLOEXEC));
}

// Until there is nothing more for now.
std::string readFrom(const Descriptor& file) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t size = 0; (size = read(file.get(), buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(size));
  }
  return text;
}

std::string contentOf(const Descriptor& file) {
  lseek(file.get(), 0, SEEK_SET);
  return readFrom(file);
}

/// Where the program writes, and where we read it.
struct Channel {
  Descriptor theirs;
  Descriptor ours;
};

Channel terminal() {
  Descriptor master(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  std::array<char, 128> name{};
  if (grantpt(master.get()) != 0 || unlockpt(master.get()) != 0 ||
      ptsname_r(master.get(), name.data(), name.size()) != 0) {
    throw std::runtime_error("no terminal");
  }
  return {Descriptor(open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC)), std::move(master)};
}

Channel channelTo(Surroundings::Out out) {
  switch (out) {
    case Surroundings::Out::terminal:
      return terminal();
    case Surroundings::Out::abandonedPipe:
      return {makePipe().to, makeFile()};
    case Surroundings::Out::fullDevice:
      return {Descriptor(open("/dev/full", O_WRONLY | O_CLOEXEC)), makeFile()};
    case Surroundings::Out::file:
      break;
  }
  auto file = makeFile();
  return {Descriptor(fcntl(file.get(), F_DUPFD_CLOEXEC, 0)), std::move(file)};
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int exitStatusOf(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

Outcome runProgram(const std::string& path, const Arguments& arguments, const Surroundings& surroundings) {
  const auto input = pipeWith(surroundings.input);
  const auto out = channelTo(surroundings.out);
  const auto err = makeFile();
  Arguments words{path};
  words.insert(words.end(), arguments.begin(), arguments.end());
  auto environment = surroundings.environment;
  // What a sanitizer finds must not look like an exit status of the program's own.
  environment.insert(environment.end(), {"ASAN_OPTIONS=exitcode=99", "UBSAN_OPTIONS=exitcode=99"});

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, out.theirs.get(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err.get(), STDERR_FILENO);
  pid_t pid = 0;
  const int error = posix_spawn(&pid, path.c_str(), &actions, nullptr, pointersTo(words).data(),
                                pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + path);

  Outcome outcome;
  outcome.status = exitStatusOf(pid);
  outcome.out = surroundings.out == Surroundings::Out::terminal ? readFrom(out.ours) : contentOf(out.ours);
  outcome.err = contentOf(err);
  return outcome;
}

Outcome run(const Arguments& arguments, const Surroundings& surroundings) {
  return runProgram(NEGOTIATE, arguments, surroundings);
}

Workspace::Workspace() : folder_(testing::TempDir() + "/negotiate-XXXXXX") {
  if (mkdtemp(folder_.data()) == nullptr) throw std::runtime_error("no folder");
}

Workspace::~Workspace() {
  std::filesystem::remove_all(folder_);
}

std::string Workspace::write(const std::string& name, const std::string& content) const {
  std::ofstream(path(name), std::ios::binary) << content;
  return path(name);
}

}  // namespace negotiate::tests
