// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/log/attributes/attribute.hpp>
#include <cstdint>

#include "foundation/core/export.hpp"

namespace foundation::log {

/// The Boost.Log attribute behind "Indent": how many traced scopes of a logger are open. Its value is a
/// `std::uint32_t`, 0 at first. Copies share one count, as copies of every Boost.Log attribute do.
///
/// Threads: any may call any operation. Changes are atomic, but order nothing else.
class FOUNDATION_EXPORT indent_attribute : public boost::log::attribute {
 public:
  /// A count of its own. @throws std::bad_alloc
  indent_attribute();

  void increase() noexcept;

  /// Stays at 0 once there.
  void decrease() noexcept;

 private:
  class impl;
  impl& count() const noexcept;
};

}  // namespace foundation::log
