// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/common/uuid/uuid.hpp"

#include <array>
#include <boost/random/uniform_int_distribution.hpp>
#include <boost/throw_exception.hpp>
#include <boost/uuid/string_generator.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <stdexcept>
#include <string_view>

#include "foundation/core/fork.hpp"
#include "foundation/corvane/common/uuid/hexDigitValue.hpp"

namespace foundation::corvane::common::uuid {

namespace {

// One 32-bit draw is a fixed part of how uuids follow from the seed. boost::uuids::basic_random_generator
// draws unsigned long in some versions of Boost, so the bytes are drawn here.
class Generator {
 public:
  boost::uuids::uuid next() {
    const core::fork_lock::hold lock(lock_);
    seedInThisProcess();
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
  // A forked child makes an engine of its own, and never looks at the parent's: another thread of the parent
  // may have been in the middle of a draw.
  void seedInThisProcess() {
    const auto process = core::facts_of_forks.generation.load(std::memory_order_relaxed);
    if (seededIn_ == process) return;
    engine_.emplace(std::random_device()());
    seededIn_ = process;
  }

  core::fork_lock lock_;  // guards all that follows
  std::optional<std::mt19937_64> engine_;
  std::uint32_t seededIn_ = 0;  // the generation of the process that made the engine; 0 before the first call
};

// Constant initialisation: usable from any static initialiser, and no guard that a fork could leave half
// taken. Its destructor has nothing to do, so it lasts as long as anybody can call.
constinit Generator generator;

// string_generator has a static that its first use initialises. If another thread did that during a fork, the
// child would wait for it for ever. So the first use is here, when the library is loaded.
[[maybe_unused]] const auto firstUse = boost::uuids::string_generator()("00000000000000000000000000000000");

constexpr std::string_view hexDigits = "0123456789abcdef";
constexpr std::size_t textLength = 36;

// Where the two digits of each byte stand in the text.
constexpr std::array<std::uint8_t, 16> digitPositions = {0,  2,  4,  6,  9,  11, 14, 16,
                                                         19, 21, 24, 26, 28, 30, 32, 34};

// Reads what toString writes, in either case; anything else, whether it is the text of a uuid or not, is
// false.
bool readUsualForm(std::string_view text, boost::uuids::uuid& value) noexcept {
  if (text.size() != textLength) return false;
  if (text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-') return false;
  unsigned seen = 0;
  for (std::size_t i = 0; i < digitPositions.size(); ++i) {
    const unsigned high = hexDigitValue(text[digitPositions[i]]);
    const unsigned low = hexDigitValue(text[digitPositions[i] + 1U]);
    seen |= high | low;
    value.begin()[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
  return (seen & noHexDigit) == 0;
}

}  // namespace

boost::uuids::uuid generateNil() noexcept {
  return {};
}

boost::uuids::uuid generateRandom() {
  return generator.next();
}

std::string toString(const boost::uuids::uuid& value) {
  std::string text(textLength, '-');
  for (std::size_t i = 0; i < digitPositions.size(); ++i) {
    const std::uint8_t byte = value.begin()[i];
    text[digitPositions[i]] = hexDigits[byte >> 4];
    text[digitPositions[i] + 1U] = hexDigits[byte & 0x0F];
  }
  return text;
}

boost::uuids::uuid toUUID(const std::string& text) {
  boost::uuids::uuid value;
  if (readUsualForm(text, value)) return value;
  try {
    return boost::uuids::string_generator()(text);
  } catch (const std::runtime_error&) {
    // Thrown anew, because Boost's own wording differs from version to version.
    boost::throw_exception(std::runtime_error("invalid uuid string"));
  }
}

}  // namespace foundation::corvane::common::uuid
