// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/json/texts.hpp"

#include <fstream>
#include <sstream>

#include "benchmarks/require.hpp"

namespace json_benchmark {

namespace {

Text readText(const std::string& name) {
  std::ifstream file(TEXTS "/" + name + ".json", std::ios::binary);
  std::ostringstream content;
  content << file.rdbuf();
  require(!content.str().empty(), "a text of the benchmarks is missing");
  return {name, content.str()};
}

}  // namespace

const std::vector<Text>& texts() {
  static const std::vector<Text> all{readText("results"), readText("commands"), readText("tests"),
                                     readText("measurements")};
  return all;
}

}  // namespace json_benchmark
