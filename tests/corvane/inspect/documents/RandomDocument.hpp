// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <random>
#include <string>

#include "foundation/corvane/inspect/DocumentKind.hpp"

namespace inspect_test {

/// Makes documents of which about one in three is in order; the others have whatever can be wrong with them.
class RandomDocument {
 public:
  explicit RandomDocument(unsigned seed) : engine_(seed) {}

  std::string next(foundation::corvane::inspect::DocumentKind document);

  /// The text with a few bytes changed, left out, or put in; seldom JSON.
  std::string spoiled(std::string text);

 private:
  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine_); }
  bool fault() { return below(faultOneIn_) == 0; }

  template <class... Members>
  std::string object(const Members&... members);
  template <class Element>
  std::string list(const Element& element);
  std::string member(const char* name, std::string value);
  std::string text();
  std::string word(const char* const* words, int count);
  std::string number();
  std::string version();
  std::string anything();
  std::string request();
  std::string resolution();
  std::string config(const char* listName);
  std::string offer();

  std::mt19937 engine_;
  int faultOneIn_ = 20;
};

}  // namespace inspect_test
