// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/uuid.hpp"

#include <pthread.h>

#include <boost/random/uniform_int_distribution.hpp>
#include <boost/throw_exception.hpp>
#include <boost/uuid/string_generator.hpp>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>
#include <optional>
#include <random>
#include <stdexcept>
#include <string_view>

namespace foundation::corvane::common::uuid {

namespace {

// One 32-bit draw is a fixed part of how uuids follow from the seed. boost::uuids::basic_random_generator
// draws unsigned long in some versions of Boost, so the bytes are drawn here.
class Generator {
 public:
  boost::uuids::uuid next() {
    const std::lock_guard lock(mutex_);
    if (!engine_) engine_.emplace(std::random_device()());
    boost::uuids::uuid value;
    auto byte = value.begin();
    for (int draw = 0; draw < 4; ++draw) {
      auto word = boost::random::uniform_int_distribution<std::uint32_t>(0, 0xFFFFFFFF)(*engine_);
      for (int i = 0; i < 4; ++i, word >>= 8) *byte++ = static_cast<std::uint8_t>(word);
    }
    byte = value.begin();
    byte[8] = static_cast<std::uint8_t>((byte[8] & 0x3F) | 0x80);  // the variant of RFC 4122
    byte[6] = static_cast<std::uint8_t>((byte[6] & 0x0F) | 0x40);  // version 4
    return value;
  }

 private:
  std::mutex mutex_;
  std::optional<std::mt19937_64> engine_;  // guarded by mutex_; empty until the first call seeds it
};

// Constant initialisation: usable from any static initialiser, and no guard that a fork could leave half
// taken. Its destructor has nothing to do, so it lasts as long as anybody can call.
constinit Generator generator;

// In the child of a fork another thread of the parent may hold the mutex for ever, or have stopped in the
// middle of a draw. Start over: a free mutex, and no engine, so that the child seeds its own.
void startOverInChild() noexcept {
  ::new (&generator) Generator;
}

[[maybe_unused]] const int forkHandler = pthread_atfork(nullptr, nullptr, startOverInChild);

constexpr std::string_view hexDigits = "0123456789abcdef";

}  // namespace

boost::uuids::uuid generateNil() noexcept {
  return {};
}

boost::uuids::uuid generateRandom() {
  return generator.next();
}

std::string toString(const boost::uuids::uuid& value) {
  std::string text(36, '-');
  std::size_t position = 0;
  for (const std::uint8_t byte : value) {
    if (position == 8 || position == 13 || position == 18 || position == 23) ++position;
    text[position++] = hexDigits[byte >> 4];
    text[position++] = hexDigits[byte & 0x0F];
  }
  return text;
}

boost::uuids::uuid toUUID(const std::string& text) {
  try {
    return boost::uuids::string_generator()(text);
  } catch (const std::runtime_error&) {
    // Thrown anew, because Boost's own wording differs from version to version.
    boost::throw_exception(std::runtime_error("invalid uuid string"));
  }
}

}  // namespace foundation::corvane::common::uuid
