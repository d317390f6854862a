// SPDX-License-Identifier: Apache-2.0
// The end that asks. It launches the server whose path it is given, negotiates, and sends a note.
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <iostream>
#include <vector>

#include "Lines.hpp"
#include "notes.hpp"

namespace {

using namespace foundation::corvane::common;

void converse(Lines& server) {
  const auto protocols = serialization::ProtocolRegistry::create("notes client", "1.0");
  notes::registerNotes(*protocols);

  // What the client asks for: a protocol, a version, and how much it wants which features.
  const std::vector<session::MessageProtocolConfig> requests{
      foundation::corvane::authoring::Request("Notes", {1, 0}).prefer("encoding", "hex")};
  const auto document = session::toJSON(requests);
  std::cout << "client asks     " << document << std::endl;
  server.send(document);

  // What was agreed is installed here as it was there.
  const auto registry = serialization::Registry::create("notes client");
  session::handleProtocolResolutions(protocols, session::toResolutions(server.receive()), registry);
  registry->close();

  // Messages find their serializer by their type.
  const notes::Note note("tea\nat five");
  const auto serializer =
      std::dynamic_pointer_cast<const notes::NoteSerializer>(registry->serializer(typeid(note)));
  if (!serializer) throw std::runtime_error("the server does not speak Notes");
  const auto line = serializer->write(note);
  std::cout << "client sends    " << serializer->tag() << ", " << line << std::endl;
  server.send(serializer->tag());
  server.send(line);
}

// Starts the program at `path` with one end of a new socket as its standard input, and returns the other end.
int launch(char* path, pid_t& child) {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    throw std::runtime_error("there is no socket to be had");
  }
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  char* const arguments[] = {path, nullptr};
  const int error = ::posix_spawn(&child, path, &actions, nullptr, arguments, environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (error == 0) return ends[0];
  ::close(ends[0]);
  throw std::runtime_error("the server cannot be started");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: client PATH-OF-THE-SERVER\n";
    return 2;
  }
  try {
    pid_t child = 0;
    {
      Lines server(launch(argv[1], child));
      converse(server);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && status == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "client: " << error.what() << std::endl;
    return 1;
  }
}
