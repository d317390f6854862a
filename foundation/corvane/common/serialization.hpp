// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/serialization/BaseMessage.hpp"
#include "foundation/corvane/common/serialization/IDText.hpp"
#include "foundation/corvane/common/serialization/ProtocolInitializer.hpp"
#include "foundation/corvane/common/serialization/ProtocolRegistry.hpp"
#include "foundation/corvane/common/serialization/Registry.hpp"
#include "foundation/corvane/common/serialization/SerializationContext.hpp"
#include "foundation/corvane/common/serialization/SerializerBase.hpp"
