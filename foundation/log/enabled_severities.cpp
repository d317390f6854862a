// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/enabled_severities.hpp"

#include <pthread.h>

#include <mutex>
#include <string>
#include <type_traits>

#include "foundation/log/channel_table.hpp"
#include "foundation/log/logging_core.hpp"

namespace foundation::log {
namespace {

// Relaxed for every mask: a record that follows the former mask a little longer does no harm, and nothing is
// published through them.
constexpr auto relaxed = std::memory_order_relaxed;

struct Channel {
  const std::string name;
  std::atomic<std::uint32_t> mask;
  Channel* const next;
};

// Lists, because they need no memory while nobody names a channel, and are short.
struct Table {
  std::mutex mutex;
  Channel* channels = nullptr;
  impl::attached_mask* attached = nullptr;
  std::uint32_t mask_of_others = 0;

  Channel* find(std::string_view name) const noexcept {
    auto* channel = channels;
    while (channel != nullptr && channel->name != name) channel = channel->next;
    return channel;
  }

  Channel& obtain(std::string_view name) {
    if (auto* const channel = find(name)) return *channel;
    channels = new Channel{std::string(name), mask_of_others, channels};
    return *channels;
  }

  std::uint32_t mask_in_force(std::string_view name) const noexcept {
    const auto* const channel = find(name);
    return channel != nullptr ? channel->mask.load(relaxed) : mask_of_others;
  }
};

// There before the first static initialiser and after the last exit handler.
static_assert(std::is_trivially_destructible_v<Table>);
constinit Table table;

// A fork waits for whoever changes the table, so that the child finds it whole and its lock free.
[[maybe_unused]] const int fork_handlers =
    pthread_atfork([] { table.mutex.lock(); }, [] { table.mutex.unlock(); }, [] { table.mutex.unlock(); });

}  // namespace

void set_enabled_severities(std::string_view channel, std::uint32_t mask) {
  if (mask != 0) impl::logging_core::instance();
  const std::lock_guard lock(table.mutex);
  table.obtain(channel).mask.store(mask, relaxed);
  for (auto* other = table.attached; other != nullptr; other = other->next) {
    if (channel == other->channel) other->value.store(mask, relaxed);
  }
}

void set_enabled_severities(std::uint32_t mask) {
  if (mask != 0) impl::logging_core::instance();
  const std::lock_guard lock(table.mutex);
  table.mask_of_others = mask;
  for (auto* channel = table.channels; channel != nullptr; channel = channel->next) {
    channel->mask.store(mask, relaxed);
  }
  for (auto* other = table.attached; other != nullptr; other = other->next) {
    other->value.store(mask, relaxed);
  }
}

std::uint32_t enabled_severities(std::string_view channel) {
  const std::lock_guard lock(table.mutex);
  return table.mask_in_force(channel);
}

const std::atomic<std::uint32_t>& impl::severities_of(std::string_view channel) {
  const std::lock_guard lock(table.mutex);
  return table.obtain(channel).mask;
}

void impl::attach(attached_mask& mask) noexcept {
  const std::lock_guard lock(table.mutex);
  if (mask.attached.load(relaxed)) return;
  mask.next = table.attached;
  table.attached = &mask;
  mask.value.store(table.mask_in_force(mask.channel), relaxed);
  // Release, after the value: who sees the mask attached sees no more of the all-ones that it began with.
  mask.attached.store(true, std::memory_order_release);
}

}  // namespace foundation::log
