// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace foundation::corvane::tests {

/// Expects `text` to be, byte for byte, what stands in the file expected/`name`. Where the environment
/// variable CORVANE_FREEZE is set, writes it there instead; a test that wrote a change fails, so that nobody
/// freezes by accident.
void expectFrozen(const std::string& name, const std::string& text);

}  // namespace foundation::corvane::tests
