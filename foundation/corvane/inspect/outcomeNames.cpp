// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Explanation.hpp"

namespace foundation::corvane::inspect {

// No default labels, so that the compiler names an enumerator that is missing here.
const char* toCString(FeatureOutcome outcome) noexcept {
  switch (outcome) {
    case FeatureOutcome::Accepted:
      return "Accepted";
    case FeatureOutcome::Overruled:
      return "Overruled";
    case FeatureOutcome::Ineffective:
      return "Ineffective";
    case FeatureOutcome::NotOffered:
      return "NotOffered";
    case FeatureOutcome::ValueNotOffered:
      return "ValueNotOffered";
    case FeatureOutcome::InvalidHandling:
      return "InvalidHandling";
    case FeatureOutcome::Unanswered:
      return "Unanswered";
    case FeatureOutcome::ProtocolLost:
      return "ProtocolLost";
  }
  return "";
}

const char* toCString(ProtocolOutcome outcome) noexcept {
  switch (outcome) {
    case ProtocolOutcome::Agreed:
      return "Agreed";
    case ProtocolOutcome::OlderVersion:
      return "OlderVersion";
    case ProtocolOutcome::NewerVersion:
      return "NewerVersion";
    case ProtocolOutcome::NoVersion:
      return "NoVersion";
    case ProtocolOutcome::Unreadable:
      return "Unreadable";
    case ProtocolOutcome::Unknown:
      return "Unknown";
    case ProtocolOutcome::Declined:
      return "Declined";
    case ProtocolOutcome::UnknownOrDeclined:
      return "UnknownOrDeclined";
    case ProtocolOutcome::VersionConflict:
      return "VersionConflict";
    case ProtocolOutcome::Undefined:
      return "Undefined";
  }
  return "";
}

}  // namespace foundation::corvane::inspect
