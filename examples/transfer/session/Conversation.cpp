// SPDX-License-Identifier: Apache-2.0
#include "session/Conversation.hpp"

#include <cstddef>
#include <stdexcept>
#include <utility>

#include "foundation/corvane/common/framing/MessageID.hpp"

namespace transfer {

namespace {

using enum framing::DomainType;

// Saying hello belongs to bringing up the connection; the rest is about one that is up.
framing::DomainType domainOf(SetupMessage document) {
  return document == SetupMessage::hello ? ConnectorDomain : ControlDomain;
}

bool is(const Frame& frame, SetupMessage document) {
  return frame.domain == domainOf(document) && frame.message == static_cast<std::uint64_t>(document);
}

class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace

void throwIfRefusal(const Frame& frame, const std::string& peer) {
  constexpr std::size_t enoughForALine = 500;
  if (is(frame, SetupMessage::refusal))
    throw Refused(peer + " refuses: " + frame.body.substr(0, enoughForALine));
}

void Conversation::say(SetupMessage document, const std::string& text) {
  connection_.send({domainOf(document), 0, static_cast<std::uint64_t>(document), text});
}

std::string Conversation::hear(SetupMessage expected) {
  auto frame = connection_.receive();
  throwIfRefusal(frame, connection_.peer());
  if (!is(frame, expected)) {
    throw std::runtime_error(connection_.peer() + " sent message " + framing::toString(frame.message) +
                             " in the " + framing::toString(frame.domain) + ", out of turn");
  }
  return std::move(frame.body);
}

void Conversation::refuse(const std::exception& reason) noexcept {
  if (dynamic_cast<const Refused*>(&reason) != nullptr) return;
  try {
    say(SetupMessage::refusal, reason.what());
  } catch (const std::exception&) {
    // The connection is gone, which is often the reason itself.
  }
}

}  // namespace transfer
