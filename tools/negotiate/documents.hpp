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

/// What a document lists, and at how many places the reader did not take what is there as it stands. That an
/// optional member is not there is no such place.
template <class Record>
struct Read {
  std::vector<Record> records;
  std::size_t misread = 0;
};

using Request = Read<foundation::corvane::common::session::MessageProtocolConfig>;
using Answer = Read<foundation::corvane::common::session::MessageProtocolResolution>;

Request readRequest(const std::string& file);
Answer readAnswer(const std::string& file);
foundation::corvane::inspect::Offers readOffers(const std::string& file);

}  // namespace negotiate
