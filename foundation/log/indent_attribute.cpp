// SPDX-License-Identifier: Apache-2.0
#include "foundation/log/indent_attribute.hpp"

#include <atomic>
#include <boost/log/attributes/attribute_value_impl.hpp>

namespace foundation::log {

// Relaxed throughout: the count is a figure for readers of the log, nothing is published through it.
class indent_attribute::impl : public boost::log::attribute::impl {
 public:
  boost::log::attribute_value get_value() override {
    return boost::log::attributes::make_attribute_value(count_.load(std::memory_order_relaxed));
  }

  void increase() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }

  void decrease() noexcept {
    auto count = count_.load(std::memory_order_relaxed);
    // Only another thread's change in between causes a second turn. GCOVR_EXCL_START
    while (count != 0 && !count_.compare_exchange_weak(count, count - 1, std::memory_order_relaxed)) {
    }
    // GCOVR_EXCL_STOP
  }

 private:
  std::atomic<std::uint32_t> count_{0};
};

indent_attribute::indent_attribute() : attribute(new impl) {}

void indent_attribute::increase() noexcept {
  count().increase();
}

void indent_attribute::decrease() noexcept {
  count().decrease();
}

indent_attribute::impl& indent_attribute::count() const noexcept {
  return *static_cast<impl*>(get_impl());
}

}  // namespace foundation::log
