// SPDX-License-Identifier: Apache-2.0
// A stranger's program: the library beside the library, through its own umbrella header.
#include <foundation/corvane/common.hpp>
#include <foundation/corvane/inspect.hpp>
#include <iostream>

int main() {
  using namespace foundation::corvane;
  const std::vector<common::session::MessageProtocolConfig> request{
      {"Telemetry", {2, 1}, {{"compression", "gzip", common::session::FeatureHandling::required}}}};
  const inspect::Offers offers{"server", "1.0", {{"Telemetry", {{"compression", "lz4"}}}}};
  const auto answer = inspect::simulateAnswer(request, inspect::toOffers(toJSON(offers)));
  std::cout << inspect::toText(inspect::explain(request, answer, offers));
  const auto registry = common::serialization::Registry::create("server");
  std::cout << common::uuid::toString(fingerprint(inspect::agreementOf(*registry))) << '\n';
  const bool refused = inspect::judge(request, answer).verdict == inspect::Verdict::Refused;
  return refused && inspect::diagnose(common::session::toJSON(request)).empty() ? 0 : 1;
}
