// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/common/session/ConnectionType.hpp"
#include "foundation/corvane/common/session/FeatureHandling.hpp"
#include "foundation/corvane/common/session/FeatureRequest.hpp"
#include "foundation/corvane/common/session/FeatureResolution.hpp"
#include "foundation/corvane/common/session/FeatureStatus.hpp"
#include "foundation/corvane/common/session/IDType.hpp"
#include "foundation/corvane/common/session/LaunchConnectPolicy.hpp"
#include "foundation/corvane/common/session/MessageProtocolConfig.hpp"
#include "foundation/corvane/common/session/MessageProtocolResolution.hpp"
#include "foundation/corvane/common/session/SessionType.hpp"
#include "foundation/corvane/common/session/TransportSetup.hpp"
#include "foundation/corvane/common/session/TransportType.hpp"
#include "foundation/corvane/common/session/UUIDType.hpp"
#include "foundation/corvane/common/session/undefinedVersion.hpp"
