// SPDX-License-Identifier: Apache-2.0
#include <nghttp2/nghttp2.h>

#include <benchmark/benchmark.h>

#include <array>
#include <memory>

#include "benchmarks/require.hpp"

namespace negotiation_benchmark {

namespace {

struct Delete {
  void operator()(nghttp2_session* session) const { nghttp2_session_del(session); }
  void operator()(nghttp2_session_callbacks* callbacks) const { nghttp2_session_callbacks_del(callbacks); }
};
using Session = std::unique_ptr<nghttp2_session, Delete>;
using Callbacks = std::unique_ptr<nghttp2_session_callbacks, Delete>;

using MakeSession = int (*)(nghttp2_session**, const nghttp2_session_callbacks*, void*);

// As many features as the protocol of our negotiation has.
constexpr std::array<nghttp2_settings_entry, 2> settings{
    {{NGHTTP2_SETTINGS_MAX_CONCURRENT_STREAMS, 100}, {NGHTTP2_SETTINGS_INITIAL_WINDOW_SIZE, 1048576}}};

Session sessionOf(MakeSession make, const Callbacks& callbacks) {
  nghttp2_session* session = nullptr;
  require(make(&session, callbacks.get(), nullptr) == 0, "nghttp2 makes no session");
  nghttp2_submit_settings(session, NGHTTP2_FLAG_NONE, settings.data(), settings.size());
  return Session(session);
}

/// Hands over what `from` has to say; false if that is nothing.
bool deliver(const Session& from, const Session& to) {
  const std::uint8_t* data = nullptr;
  bool any = false;
  for (;;) {
    const auto size = nghttp2_session_mem_send(from.get(), &data);
    if (size <= 0) return any;
    nghttp2_session_mem_recv(to.get(), data, static_cast<std::size_t>(size));
    any = true;
  }
}

struct Connection {
  Session client;
  Session server;
};

Connection connect(const Callbacks& callbacks) {
  Connection connection{sessionOf(nghttp2_session_client_new, callbacks),
                        sessionOf(nghttp2_session_server_new, callbacks)};
  while (deliver(connection.client, connection.server) || deliver(connection.server, connection.client)) {
  }
  return connection;
}

void requireAgreement(const Connection& connection) {
  for (const auto& [id, value] : settings) {
    for (const auto& session : {connection.client.get(), connection.server.get()}) {
      require(nghttp2_session_get_remote_settings(session, static_cast<nghttp2_settings_id>(id)) == value,
              "an end of an HTTP/2 connection knows nothing of the other's settings");
      require(nghttp2_session_get_local_settings(session, static_cast<nghttp2_settings_id>(id)) == value,
              "an end of an HTTP/2 connection knows nothing of the other's acknowledgement");
    }
  }
}

void exchangeSettings(benchmark::State& state) {
  nghttp2_session_callbacks* made = nullptr;
  nghttp2_session_callbacks_new(&made);
  const Callbacks callbacks(made);
  requireAgreement(connect(callbacks));
  for ([[maybe_unused]] auto _ : state) {
    auto connection = connect(callbacks);
    benchmark::DoNotOptimize(connection);
  }
}

BENCHMARK(exchangeSettings)->Name("negotiation/nghttp2");

}  // namespace

}  // namespace negotiation_benchmark
