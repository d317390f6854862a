// SPDX-License-Identifier: Apache-2.0
// Records events from several threads, then crashes, so that there is something to look into. With the
// argument "wait" it waits instead, for a debugger to attach.
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "foundation/corvane/common.hpp"

namespace {

using foundation::corvane::common::framing::allocStreamID;
using foundation::corvane::common::framing::DomainType;
using foundation::corvane::common::framing::toCString;
using foundation::corvane::common::logging::dumpFastLog;
using foundation::corvane::common::logging::FastLogger;

void serve(int worker) {
  const auto logger = FastLogger::instance();
  // Texts that are made on the way are saved once, ahead of time; literals need not be.
  const char* const who = logger->save("worker " + std::to_string(worker));
  const char* const stream = logger->save(std::to_string(allocStreamID()));
  for (int message = 0; message < 300; ++message) {
    logger->log(who, "receive", toCString(DomainType::StreamDomain), stream);
    logger->log(who, "answer", nullptr, stream);
  }
}

// The log is written out before the process dies, whether or not somebody will have a core file.
void onCrash(int signal) {
  dumpFastLog(STDERR_FILENO);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

int main(int argc, char** argv) {
  const bool wait = argc > 1 && std::string_view(argv[1]) == "wait";
  std::signal(SIGSEGV, onCrash);

  std::vector<std::thread> workers;
  for (int worker = 1; worker <= 4; ++worker) workers.emplace_back(serve, worker);
  for (auto& worker : workers) worker.join();

  FastLogger::instance()->log("main", "about to fail", nullptr, "now");
  if (wait) {
    std::cout << ::getpid() << std::endl;
    ::pause();
  }
  std::raise(SIGSEGV);
}
