// SPDX-License-Identifier: Apache-2.0
// Stands between the libraries and the C library, where they register their fork handlers when they are
// loaded.
//
// Without arguments: expects one registration by the libraries of this project; then starts itself once more,
// with a variable of the environment that lets the registration fail, and expects the process to end with a
// message.
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "foundation/corvane/inspect.hpp"

namespace {

using Handler = void (*)();

int registrations = 0;

// No more than the loader allows: this runs before the initialisers of the program.
bool isOfThisProject(Handler handler) {
  Dl_info found{};
  return handler != nullptr && ::dladdr(reinterpret_cast<void*>(handler), &found) != 0 &&
         (std::strstr(found.dli_fname, "libfoundation") != nullptr ||
          std::strstr(found.dli_fname, "libcorvane") != nullptr);
}

std::string messageOfFailure(const char* self, int& status) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return "no pipe";
  const auto child = ::fork();
  if (child == 0) {
    ::setenv("REFUSE_FORK_HANDLERS", "1", 1);
    ::dup2(ends[1], STDERR_FILENO);
    ::execl(self, self, static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::close(ends[1]);
  std::string message;
  std::array<char, 256> piece{};
  for (ssize_t size = 0; (size = ::read(ends[0], piece.data(), piece.size())) > 0;) {
    message.append(piece.data(), static_cast<std::size_t>(size));
  }
  ::close(ends[0]);
  ::waitpid(child, &status, 0);
  return message;
}

}  // namespace

// What pthread_atfork of the C library calls.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the C library chose the name
extern "C" int __register_atfork(Handler prepare, Handler parent, Handler child, void* object) {
  if (isOfThisProject(prepare) || isOfThisProject(parent) || isOfThisProject(child)) {
    ++registrations;
    if (::getenv("REFUSE_FORK_HANDLERS") != nullptr) return ENOMEM;
  }
  using Register = int (*)(Handler, Handler, Handler, void*);
  return reinterpret_cast<Register>(::dlsym(RTLD_NEXT, "__register_atfork"))(prepare, parent, child, object);
}

int main(int /*count*/, char** argv) {
  const auto kept = foundation::corvane::inspect::diagnose("{}");  // keeps all libraries linked
  int status = 0;
  const auto message = messageOfFailure(argv[0], status);
  std::printf("%d registrations; status %d of a failure, with the message: %s", registrations, status,
              message.c_str());
  return registrations == 1 && WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT &&
                 message == "libfoundation: cannot register its fork handlers: Cannot allocate memory\n"
             ? EXIT_SUCCESS
             : EXIT_FAILURE;
}
