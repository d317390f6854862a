// SPDX-License-Identifier: Apache-2.0
#include "Program.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace transfer::tests {

namespace {

struct Pipe {
  std::array<int, 2> ends{};
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
};

std::string readToEnd(int fd) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t size = 0; (size = read(fd, buffer.data(), buffer.size())) > 0;) {
    text.append(buffer.data(), static_cast<std::size_t>(size));
  }
  return text;
}

}  // namespace

Program::Program(const std::vector<std::string>& arguments) {
  const Pipe out;
  const Pipe err;
  out_ = out.ends[0];
  err_ = err.ends[0];
  start(arguments, out.ends[1], err.ends[1]);
  close(out.ends[1]);
  close(err.ends[1]);
}

Program::Program(const std::vector<std::string>& arguments, int output) {
  start(arguments, output, output);
}

void Program::start(const std::vector<std::string>& arguments, int out, int err) {
  auto copies = arguments;
  std::string path = TRANSFER;
  std::vector<char*> argv{path.data()};
  for (auto& argument : copies) argv.push_back(argument.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
  const int error = posix_spawn(&pid_, path.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("cannot start " + path);
}

Program::~Program() {
  if (out_ >= 0) close(out_);
  if (err_ >= 0) close(err_);
  if (pid_ != 0) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

std::string Program::readLine() {
  std::string line;
  for (char c = 0; read(out_, &c, 1) == 1 && c != '\n';) line += c;
  return line;
}

Outcome Program::finish() {
  // One after the other: an error is a line, which fits into its pipe meanwhile.
  Outcome outcome;
  if (out_ >= 0) outcome.out = readToEnd(out_);
  if (err_ >= 0) outcome.err = readToEnd(err_);
  int status = 0;
  waitpid(pid_, &status, 0);
  pid_ = 0;
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return outcome;
}

Outcome run(const std::vector<std::string>& arguments) {
  return Program(arguments).finish();
}

Workspace::Workspace() {
  setenv("TMPDIR", folder_.path().c_str(), 1);
}

Workspace::~Workspace() {
  unsetenv("TMPDIR");
}

std::string Workspace::write(const std::string& name, const std::string& content) const {
  std::ofstream(path(name), std::ios::binary) << content;
  return path(name);
}

std::string Workspace::read(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

std::vector<std::string> Workspace::list() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
    names.push_back(entry.path().filename());
  }
  std::ranges::sort(names);
  return names;
}

std::string sampleText(std::size_t size) {
  std::string text;
  for (std::size_t line = 0; text.size() < size; ++line) {
    text += "line " + std::to_string(line * line) + " of something that is told again and again\n";
  }
  text.resize(size);
  return text;
}

}  // namespace transfer::tests
