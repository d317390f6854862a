// SPDX-License-Identifier: Apache-2.0
#include <telemetry.hpp>

int main() {
  return telemetryProtocols()->exists("Telemetry") ? 0 : 1;
}
