// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "foundation/corvane/common/session.hpp"

/// The records and texts that all variants read and write.
namespace documents_benchmark {

namespace session = foundation::corvane::common::session;

/// How many protocols a document lists, and how many features each of them.
struct Size {
  std::size_t protocols;
  std::size_t features;
};

inline constexpr std::array<Size, 3> sizes{{{1, 2}, {10, 10}, {100, 20}}};

std::string toString(const Size& size);

/// The records of a client that asks for so much, or of a server that answers it.
template <class Record>
std::vector<Record> records(const Size& size);

/// In which order the members of every object stand.
enum class Order { Ours, Reversed, Shuffled };

/// The document, as `toJSON` writes it but for the order.
template <class Record>
std::string document(const std::vector<Record>& records, Order order = Order::Ours);

/// What the public functions for a kind of record are called.
template <class Record>
inline constexpr const char* readerOf = "toConfigs";
template <>
inline constexpr const char* readerOf<session::MessageProtocolResolution> = "toResolutions";
template <class Record>
inline constexpr const char* writerOf = "toJSON of configs";
template <>
inline constexpr const char* writerOf<session::MessageProtocolResolution> = "toJSON of resolutions";

}  // namespace documents_benchmark
