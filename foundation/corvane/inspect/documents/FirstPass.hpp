// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "foundation/corvane/common/session/documentDecoder.hpp"

// Not installed: what has to be known of a document before its findings can be reported.
namespace foundation::corvane::inspect::detail {

/// What a reader has made of each object and each member that it knows, in the order in which they begin.
struct Losses {
  std::vector<bool> lost;      ///< Of each object: it lacked something required.
  std::vector<bool> replaced;  ///< Of each member: a later one of the same name took its place.
};

/// The observer of the first pass over a document.
class FirstPass : public common::session::detail::Unobserved {
 public:
  void beginObject(const json::Reader& /*reader*/, std::span<const common::session::detail::Member> members) {
    open_.push_back({losses_.lost.size(), latest_.size()});
    latest_.resize(latest_.size() + members.size(), none);
    losses_.lost.push_back(false);
  }

  void member(const json::Reader& /*reader*/, std::size_t index) {
    const auto place = open_.back().members + index;
    if (place == latest_.size()) return;  // a member that nobody reads
    auto& latest = latest_[place];
    if (latest != none) losses_.replaced[latest] = true;
    latest = losses_.replaced.size();
    losses_.replaced.push_back(false);
  }

  void endObject(const json::Reader& /*reader*/, bool whole) {
    losses_.lost[open_.back().index] = !whole;
    latest_.resize(open_.back().members);
    open_.pop_back();
  }

  template <class Record>
  void record(std::vector<Record>& records) noexcept {
    records.clear();
  }

  const Losses& losses() const noexcept { return losses_; }

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  struct Object {
    std::size_t index;    // in losses_.lost
    std::size_t members;  // where those of its table begin in latest_
  };

  Losses losses_;
  std::vector<Object> open_;
  std::vector<std::size_t> latest_;  // of each member of each open object, its index in losses_.replaced
};

}  // namespace foundation::corvane::inspect::detail
