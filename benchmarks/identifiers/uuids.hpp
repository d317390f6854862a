// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace identifiers_benchmark {

inline std::vector<boost::uuids::uuid> uuids() {
  std::mt19937_64 random(1);
  std::vector<boost::uuids::uuid> result(1000);
  for (auto& value : result) {
    for (auto& byte : value) byte = static_cast<std::uint8_t>(random());
  }
  return result;
}

inline std::vector<std::string> texts() {
  std::vector<std::string> result;
  for (const auto& value : uuids()) result.push_back(boost::uuids::to_string(value));
  return result;
}

}  // namespace identifiers_benchmark
