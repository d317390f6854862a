// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "transport/Connection.hpp"

namespace transfer {

/// The documents by which two ends come to an agreement; the number is the message identifier of their frame.
enum class SetupMessage : std::uint64_t {
  hello = 1,      ///< Who is there.
  offers = 2,     ///< What the server offers, to explain the rest: nothing is decided by it.
  requests = 3,   ///< What the client asks for.
  answers = 4,    ///< What the server agrees to.
  agreement = 5,  ///< The fingerprint of what an end has in its registry.
  refusal = 6,    ///< Why there will be no agreement. May come at any time, and is the last frame.
};

/// An exchange of documents in a fixed order, before messages flow.
class Conversation {
 public:
  explicit Conversation(Connection& connection) : connection_(connection) {}

  /// @throws std::runtime_error as `Connection::send`.
  void say(SetupMessage document, const std::string& text);

  /// @throws std::runtime_error as `Connection::receive`; if another document comes; and if the peer refuses,
  ///         with its reason.
  std::string hear(SetupMessage expected);

  /// Tells the peer, as far as that can still be done. Says nothing to a peer that refused us.
  void refuse(const std::exception& reason) noexcept;

 private:
  Connection& connection_;
};

/// @throws std::runtime_error with the peer's reason if `frame` is its refusal.
void throwIfRefusal(const Frame& frame, const std::string& peer);

}  // namespace transfer
