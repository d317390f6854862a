// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <foundation/corvane/common.hpp>
#include <memory>

// A consumer's own library, with a type of ours in its interface.
std::shared_ptr<foundation::corvane::common::serialization::ProtocolRegistry> telemetryProtocols();
