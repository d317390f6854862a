// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "foundation/corvane/common/session/documentDecoder.hpp"

// Not installed: what has to be known of a document before its findings can be told.
namespace foundation::corvane::inspect::detail {

/// What a reader has made of each object and each member that it knows, in the order in which they begin.
struct Fates {
  std::vector<bool> lost;      ///< Of each object: it lacked something required.
  std::vector<bool> replaced;  ///< Of each member: a later one of the same name took its place.
};

/// An observer of the decoder that goes first.
class Scout : public common::session::detail::Unobserved {
 public:
  void beginObject(const json::Reader& reader, std::span<const common::session::detail::Member> members);
  void member(const json::Reader& reader, std::size_t index);
  void endObject(const json::Reader& reader, bool whole);

  template <class Record>
  void record(std::vector<Record>& records) noexcept {
    records.clear();
  }

  const Fates& fates() const noexcept { return fates_; }

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  static constexpr std::size_t mostMembers = 3;

  struct Object {
    std::size_t index;                            // in fates_.lost
    std::size_t size;                             // of its members
    std::array<std::size_t, mostMembers> latest;  // of each member, its index in fates_.replaced
  };

  Fates fates_;
  std::vector<Object> open_;
};

}  // namespace foundation::corvane::inspect::detail
