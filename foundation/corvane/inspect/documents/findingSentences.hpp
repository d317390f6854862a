// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "foundation/corvane/common/session/documentDecoder.hpp"
#include "foundation/corvane/inspect/Finding.hpp"

// Not installed: what findings say to people.
namespace foundation::corvane::inspect::detail {

/// The value at the reader's token: `the string "2.1"`, `an array`.
std::string describe(const json::Reader& reader);

/// What the value of `member` has to be: `a string`, `one of "required", "optional", "preferred"`.
std::string expected(const common::session::detail::Member& member);

/// What becomes of an object of these members, or of the `index`-th of them: `the feature request counts as
/// an empty one`. Not for `Rounded` and `Dropped`, whose sentences differ.
std::string consequence(Effect effect, std::span<const common::session::detail::Member> members,
                        std::size_t index);

/// Why a text that stops being JSON at the reader's token does so.
std::string syntaxError(const json::Reader& reader, std::string_view text, bool afterEnd);

}  // namespace foundation::corvane::inspect::detail
