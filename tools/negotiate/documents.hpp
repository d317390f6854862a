// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/inspect/Offers.hpp"

// The records of the documents in files. What their readers drop, default or reread is told on standard
// error: often enough it is the very reason why two ends do not agree.
//
// All three throw InputError where there is nothing to explain: when the file cannot be read, is no JSON, or
// has not the list that is looked for.
namespace negotiate {

/// A client's requests, and how many nobody will see because the document has something else in their place.
struct Request {
  std::vector<foundation::corvane::common::session::MessageProtocolConfig> configs;
  std::size_t lostProtocols = 0;
  std::size_t lostFeatures = 0;
};

Request readRequest(const std::string& file);
std::vector<foundation::corvane::common::session::MessageProtocolResolution> readAnswer(
    const std::string& file);
foundation::corvane::inspect::Offers readOffers(const std::string& file);

}  // namespace negotiate
