// SPDX-License-Identifier: Apache-2.0
#include <capnp/rpc-twoparty.h>
#include <kj/async-io.h>

#include <benchmark/benchmark.h>

namespace negotiation_benchmark {

namespace {

/// What the server offers to whoever connects: a capability without methods.
class Service final : public capnp::Capability::Server {
 public:
  DispatchCallResult dispatchCall(uint64_t interfaceId, uint16_t methodId,
                                  capnp::CallContext<capnp::AnyPointer, capnp::AnyPointer>) override {
    return internalUnimplemented("no interface", interfaceId, methodId);
  }
};

void connect(capnp::Capability::Client service, kj::WaitScope& scope) {
  auto pipe = kj::newTwoWayPipe();
  capnp::TwoPartyClient server(*pipe.ends[0], service, capnp::rpc::twoparty::Side::SERVER);
  capnp::TwoPartyClient client(*pipe.ends[1]);
  client.bootstrap().whenResolved().wait(scope);
}

void bootstrap(benchmark::State& state) {
  kj::EventLoop loop;
  kj::WaitScope scope(loop);
  capnp::Capability::Client service = kj::heap<Service>();
  for ([[maybe_unused]] auto _ : state) connect(service, scope);
}

BENCHMARK(bootstrap)->Name("negotiation/Cap'n Proto");

}  // namespace

}  // namespace negotiation_benchmark
