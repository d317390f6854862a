// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Scout.hpp"

namespace foundation::corvane::inspect::detail {

void Scout::beginObject(const json::Reader& /*reader*/,
                        std::span<const common::session::detail::Member> members) {
  Object object{fates_.lost.size(), members.size(), {}};
  object.latest.fill(none);
  open_.push_back(object);
  fates_.lost.push_back(false);
}

void Scout::member(const json::Reader& /*reader*/, std::size_t index) {
  auto& object = open_.back();
  if (index == object.size) return;
  auto& latest = object.latest[index];
  if (latest != none) fates_.replaced[latest] = true;
  latest = fates_.replaced.size();
  fates_.replaced.push_back(false);
}

void Scout::endObject(const json::Reader& /*reader*/, bool whole) {
  fates_.lost[open_.back().index] = !whole;
  open_.pop_back();
}

}  // namespace foundation::corvane::inspect::detail
