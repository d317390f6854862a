// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/enabled_severities.hpp"

#include <memory>
#include <string>
#include <type_traits>

#include "foundation/core/fork.hpp"
#include "foundation/log/channel_table.hpp"
#include "foundation/log/dropping.hpp"
#include "foundation/log/logging_core.hpp"

namespace foundation::log {
namespace {

using core::structure_change;

// Relaxed for every mask: a record that follows the former mask a little longer does no harm, and nothing is
// published through them.
constexpr auto relaxed = std::memory_order_relaxed;

struct Channel {
  const std::string name;
  std::atomic<std::uint32_t> mask{0};
  Channel* next = nullptr;
};

// Lists, because they need no memory while nobody names a channel, and are short. Used only under a
// structure_change, so that a forked child finds all masks as one call has set them.
struct Table {
  Channel* channels = nullptr;
  impl::attached_mask* attached = nullptr;
  std::uint32_t mask_of_others = 0;

  Channel* find(std::string_view name) const noexcept {
    auto* channel = channels;
    while (channel != nullptr && channel->name != name) channel = channel->next;
    return channel;
  }

  void add(Channel& channel) noexcept {
    channel.mask.store(mask_of_others, relaxed);
    channel.next = channels;
    channels = &channel;
  }

  std::uint32_t mask_in_force(std::string_view name) const noexcept {
    const auto* const channel = find(name);
    return channel != nullptr ? channel->mask.load(relaxed) : mask_of_others;
  }
};

// There before the first static initialiser and after the last exit handler.
static_assert(std::is_trivially_destructible_v<Table>);
constinit Table table;

Channel* known(std::string_view name) noexcept {
  const structure_change change;
  return table.find(name);
}

// Takes memory before it changes the table, because a structure_change may not.
Channel& obtain(std::string_view name) {
  if (auto* const channel = known(name)) return *channel;
  std::unique_ptr<Channel> made(new Channel{std::string(name)});
  const structure_change change;
  if (auto* const channel = table.find(name)) return *channel;  // another thread was faster
  table.add(*made);
  return *made.release();
}

// While records are dropped, Boost.Log must not be used. resume_records_after_fork does this later.
void keep_core_of_boost_log(std::uint32_t mask) {
  if (mask != 0 && !impl::drops_records()) impl::logging_core::instance();
}

}  // namespace

void set_enabled_severities(std::string_view channel, std::uint32_t mask) {
  keep_core_of_boost_log(mask);
  auto& known_channel = obtain(channel);
  const structure_change change;
  known_channel.mask.store(mask, relaxed);
  for (auto* other = table.attached; other != nullptr; other = other->next) {
    if (channel == other->channel) other->value.store(mask, relaxed);
  }
}

void set_enabled_severities(std::uint32_t mask) {
  keep_core_of_boost_log(mask);
  const structure_change change;
  table.mask_of_others = mask;
  for (auto* channel = table.channels; channel != nullptr; channel = channel->next) {
    channel->mask.store(mask, relaxed);
  }
  for (auto* other = table.attached; other != nullptr; other = other->next) {
    other->value.store(mask, relaxed);
  }
}

std::uint32_t enabled_severities(std::string_view channel) {
  const structure_change change;
  return table.mask_in_force(channel);
}

const std::atomic<std::uint32_t>& impl::severities_of(std::string_view channel) {
  return obtain(channel).mask;
}

void impl::attach(attached_mask& mask) noexcept {
  const structure_change change;
  if (mask.attached.load(relaxed)) return;
  mask.next = table.attached;
  table.attached = &mask;
  mask.value.store(table.mask_in_force(mask.channel), relaxed);
  // Release, after the value: who sees the mask attached sees no more of the all-ones that it began with.
  mask.attached.store(true, std::memory_order_release);
}

}  // namespace foundation::log
