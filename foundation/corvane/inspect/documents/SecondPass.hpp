// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/inspect/Finding.hpp"
#include "foundation/corvane/inspect/diagnose.hpp"
#include "foundation/corvane/inspect/documents/FirstPass.hpp"
#include "foundation/corvane/inspect/documents/PlaceFinder.hpp"

// Not installed: turns what the decoder does into findings.
namespace foundation::corvane::inspect::detail {

/// The observer of the second pass over a document: reports the findings. A `FirstPass` over the same text
/// gave `losses`.
class SecondPass {
 public:
  /// All are referred to.
  SecondPass(std::string_view text, const Losses& losses, const FindingVisitor& visit) noexcept;

  void beginObject(const json::Reader& reader, std::span<const common::session::detail::Member> members);
  void member(const json::Reader& reader, std::size_t index);
  void misfit(const json::Reader& reader, common::session::detail::Misfit misfit);
  void reread(const json::Reader& reader, double given, unsigned taken);
  void endObject(const json::Reader& reader, bool whole);
  void element(const json::Reader& reader);

  template <class Record>
  void record(std::vector<Record>& records) noexcept {
    records.clear();
  }

 private:
  using Members = std::span<const common::session::detail::Member>;

  struct Object {
    Members members;
    Place start;
    std::size_t pathSize;        // of the path to it
    std::size_t memberPathSize;  // of the path to its member
    std::size_t elements;        // of its member that is a list, so far
    std::size_t member;          // the index of its member
    std::size_t seen;            // where its members begin in seen_
    bool lost;                   // it or the record that it belongs to
    bool silent;                 // nobody will ever see what it holds
    bool replaced;               // a later member of the same name takes its member's place
  };

  bool isHeard(Effect effect) const noexcept;
  Effect effectOn(const common::session::detail::Member& member) const noexcept;
  void report(Rule rule, Effect effect, const Place& place, std::string sentence);

  const Losses& losses_;
  const FindingVisitor& visit_;
  PlaceFinder places_;
  std::vector<Object> open_;
  std::vector<bool> seen_;  // of each member of each open object: it is there
  std::string path_;
  std::size_t objects_ = 0;  // so far, an index in losses_.lost
  std::size_t members_ = 0;  // so far, an index in losses_.replaced
  bool isElement_ = false;   // the object that begins is an element of a list
};

/// Ends a diagnosis whose visitor has had enough.
struct Enough {};

}  // namespace foundation::corvane::inspect::detail
