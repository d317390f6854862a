// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <unordered_map>
#include <utility>

// Short names for what the library calls by long ones.
namespace foundation::corvane::common::framing {}
namespace foundation::corvane::common::serialization {}
namespace foundation::corvane::common::session {}
namespace foundation::corvane::inspect {}
namespace foundation::json {}

namespace transfer {

namespace framing = foundation::corvane::common::framing;
namespace serialization = foundation::corvane::common::serialization;
namespace session = foundation::corvane::common::session;
namespace inspect = foundation::corvane::inspect;
namespace json = foundation::json;

using Version = std::pair<unsigned, unsigned>;                       ///< major, minor
using Configuration = std::unordered_map<std::string, std::string>;  ///< feature name to agreed value

}  // namespace transfer
