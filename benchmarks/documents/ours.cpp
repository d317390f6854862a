// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/documents/variant.hpp"

namespace documents_benchmark {

namespace {

class Reader {
 public:
  explicit Reader(std::string text) : text_(std::move(text)) {}

  void read(std::vector<session::MessageProtocolConfig>& configs) const {
    configs = session::toConfigs(text_);
  }
  void read(std::vector<session::MessageProtocolResolution>& resolutions) const {
    resolutions = session::toResolutions(text_);
  }

 private:
  std::string text_;
};

struct Writer {
  template <class Record>
  std::string write(const std::vector<Record>& records) const {
    return toJSON(records);
  }
};

template <class Record>
void addOrder(const char* orderName, Order order) {
  const auto name = std::string(readerOf<Record>) + " of another order/" + orderName;
  benchmark::RegisterBenchmark(name.c_str(), [order](benchmark::State& state) {
    const auto expected = records<Record>({100, 20});
    read<Reader>(state, document(expected, order), expected);
  });
}

template <class Record>
bool addOrders() {
  addOrder<Record>("ours", Order::Ours);
  addOrder<Record>("reversed", Order::Reversed);
  addOrder<Record>("shuffled", Order::Shuffled);
  return true;
}

[[maybe_unused]] const bool added = addReaders<Reader>("ours") && addWriters<Writer>("ours") &&
                                    addOrders<session::MessageProtocolConfig>() &&
                                    addOrders<session::MessageProtocolResolution>();

}  // namespace

}  // namespace documents_benchmark
