# SPDX-License-Identifier: Apache-2.0
include(CMakeFindDependencyMacro)
find_dependency(corvane_common CONFIG)
include(${CMAKE_CURRENT_LIST_DIR}/consumerTargets.cmake)
