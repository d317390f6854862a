// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/corvane/authoring/Offer.hpp"
#include "foundation/corvane/authoring/Registration.hpp"
#include "foundation/corvane/authoring/Request.hpp"
#include "foundation/corvane/authoring/chooseVersion.hpp"
