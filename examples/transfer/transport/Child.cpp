// SPDX-License-Identifier: Apache-2.0
#include "transport/Child.hpp"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/system/error_code.hpp>
#include <chrono>
#include <csignal>
#include <exception>
#include <stdexcept>
#include <system_error>

namespace transfer {

Child::Child(boost::asio::io_context& io, const std::vector<std::string>& arguments)
    : io_(io), ended_(io, SIGCHLD) {
  auto copies = arguments;
  std::string name = "transfer";
  std::vector<char*> argv{name.data()};
  for (auto& argument : copies) argv.push_back(argument.data());
  argv.push_back(nullptr);

  // The child gets standard input, output and error, and none of our sockets: a copy of one of them there
  // would keep a connection open that we have closed.
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  const int error = posix_spawn(&pid_, "/proc/self/exe", &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    pid_ = 0;
    throw std::runtime_error("cannot start another process: " + std::generic_category().message(error));
  }
}

Child::~Child() {
  constexpr auto grace = std::chrono::seconds(2);
  try {
    wait(Clock::now() + grace);
  } catch (const std::exception&) {
    kill(pid_, SIGKILL);
    waitpid(pid_, &status_, 0);
  }
}

bool Child::reap() {
  if (pid_ != 0 && waitpid(pid_, &status_, WNOHANG) == pid_) pid_ = 0;
  return pid_ == 0;
}

int Child::wait(Clock::time_point deadline) {
  while (!reap()) {
    ended_.async_wait([](const boost::system::error_code&, int) {});
    if (!finishBefore(deadline, io_, [this] { ended_.cancel(); })) {
      throw std::runtime_error("the process that was started does not end");
    }
  }
  return WIFEXITED(status_) ? WEXITSTATUS(status_) : 128 + WTERMSIG(status_);
}

}  // namespace transfer
