// SPDX-License-Identifier: Apache-2.0
// Preloaded into both processes of a demo. A process that lists a folder with a socket in it goes on only
// when somebody else has removed the socket. So two processes that remove the same socket always collide.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cstring>

extern "C" dirent* readdir(DIR* folder) {
  using Function = dirent* (*)(DIR*);
  static const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "readdir"));
  dirent* const entry = original(folder);
  if (entry != nullptr && std::strcmp(entry->d_name, "socket") == 0) {
    while (faccessat(dirfd(folder), "socket", F_OK, AT_SYMLINK_NOFOLLOW) == 0) sched_yield();
  }
  return entry;
}
