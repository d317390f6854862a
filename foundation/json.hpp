// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/json/Reader.hpp"
#include "foundation/json/Value.hpp"
#include "foundation/json/ascii.hpp"
#include "foundation/json/parse.hpp"
#include "foundation/json/serialize.hpp"
