// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

#include "benchmarks/documents/documents.hpp"

/// What every peer's user must write for himself.
namespace documents_benchmark {

inline session::FeatureHandling toHandling(std::string_view text) {
  using enum session::FeatureHandling;
  if (text == "required") return required;
  if (text == "optional") return optional;
  if (text == "preferred") return preferred;
  return undefined;
}

inline session::FeatureStatus toStatus(std::string_view text) {
  using enum session::FeatureStatus;
  if (text == "success") return success;
  if (text == "unsupported_error") return unsupported_error;
  if (text == "unsupported_warning") return unsupported_warning;
  if (text == "invalid_value_error") return invalid_value_error;
  if (text == "invalid_value_warning") return invalid_value_warning;
  if (text == "invalid_handling") return invalid_handling;
  return undefined;
}

inline const char* toWord(session::FeatureHandling handling) {
  constexpr const char* words[] = {"undefined", "required", "optional", "preferred"};
  return words[static_cast<unsigned>(handling)];
}

inline const char* toWord(session::FeatureStatus status) {
  constexpr const char* words[] = {"undefined",           "success",
                                   "unsupported_error",   "unsupported_warning",
                                   "invalid_value_error", "invalid_value_warning",
                                   "invalid_handling"};
  return words[static_cast<unsigned>(status)];
}

template <class Record>
inline constexpr const char* listName = "protocolConfigs";
template <>
inline constexpr const char* listName<session::MessageProtocolResolution> = "protocolResolutions";

}  // namespace documents_benchmark
