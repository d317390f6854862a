// SPDX-License-Identifier: Apache-2.0
// The end that answers. Its standard input is a socket, on whose other end is a client.
#include <unistd.h>

#include <exception>
#include <iostream>

#include "Lines.hpp"
#include "notes.hpp"

namespace {

using namespace foundation::corvane::common;

void serve(Lines& client) {
  // What this process can speak.
  const auto protocols = serialization::ProtocolRegistry::create("notes server", "1.0");
  notes::registerNotes(*protocols);

  // What this connection will: each protocol that is asked for and known is installed into its registry.
  const auto registry = serialization::Registry::create("notes server");
  const auto requests = session::toConfigs(client.receive());
  const auto answer = session::toJSON(session::resolveProtocolRequests(protocols, requests, registry));
  registry->close();
  std::cout << "server answers  " << answer << std::endl;
  client.send(answer);

  // Messages name their serializer by its tag.
  const auto tag = client.receive();
  const auto line = client.receive();
  const auto serializer = std::dynamic_pointer_cast<const notes::NoteSerializer>(registry->serializer(tag));
  if (!serializer) throw std::runtime_error("no agreed protocol has messages of this tag");
  std::cout << "server reads    " << serializer->read(line).words << std::endl;
}

}  // namespace

int main() {
  try {
    Lines client(STDIN_FILENO);
    serve(client);
  } catch (const std::exception& error) {
    std::cerr << "server: " << error.what() << std::endl;
    return 1;
  }
}
