// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Outcome.hpp"

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
    case ProtocolOutcome::RequestWithoutVersion:
      return "RequestWithoutVersion";
    case ProtocolOutcome::Unreadable:
      return "Unreadable";
    case ProtocolOutcome::NotOffered:
      return "NotOffered";
    case ProtocolOutcome::Declined:
      return "Declined";
    case ProtocolOutcome::NotOfferedOrDeclined:
      return "NotOfferedOrDeclined";
    case ProtocolOutcome::VersionConflict:
      return "VersionConflict";
    case ProtocolOutcome::AnswerWithoutVersion:
      return "AnswerWithoutVersion";
  }
  return "";
}

}  // namespace foundation::corvane::inspect
