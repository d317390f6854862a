// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/Finding.hpp"

namespace foundation::corvane::inspect {

// No default labels, so that the compiler names an enumerator that is missing here.
const char* toCString(Rule rule) noexcept {
  switch (rule) {
    case Rule::Syntax:
      return "Syntax";
    case Rule::NotAnObject:
      return "NotAnObject";
    case Rule::UnknownMember:
      return "UnknownMember";
    case Rule::RepeatedMember:
      return "RepeatedMember";
    case Rule::MissingMember:
      return "MissingMember";
    case Rule::WrongKind:
      return "WrongKind";
    case Rule::EmptyName:
      return "EmptyName";
    case Rule::UnknownWord:
      return "UnknownWord";
    case Rule::FractionalNumber:
      return "FractionalNumber";
    case Rule::VersionRange:
      return "VersionRange";
  }
  return "";
}

const char* toCString(Effect effect) noexcept {
  switch (effect) {
    case Effect::DocumentLost:
      return "DocumentLost";
    case Effect::ElementLost:
      return "ElementLost";
    case Effect::RecordLost:
      return "RecordLost";
    case Effect::Defaulted:
      return "Defaulted";
    case Effect::Rounded:
      return "Rounded";
    case Effect::Dropped:
      return "Dropped";
  }
  return "";
}

}  // namespace foundation::corvane::inspect
