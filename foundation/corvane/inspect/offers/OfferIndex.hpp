// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/corvane/inspect/Offers.hpp"

// Not installed: offers by name. Refers to the offers that it was made from.
namespace foundation::corvane::inspect::detail {

/// What is offered of one protocol.
class OfferedProtocol {
 public:
  void add(const ProtocolOffer& offer) {
    for (const auto& [name, value, handling] : offer.features) {
      if (++counts_[{name, value}] != 1) continue;
      auto& values = values_[name];
      if (values.empty()) names_.push_back(name);
      values.push_back(value);
    }
  }

  /// The features, each once, in order.
  const std::vector<std::string_view>& names() const { return names_; }

  /// The values of the feature, each once, in order.
  const std::vector<std::string_view>& values(std::string_view feature) const {
    const auto place = values_.find(feature);
    return place == values_.end() ? noValues_ : place->second;
  }

  bool has(std::string_view feature, std::string_view value) const { return count(feature, value) != 0; }

  /// How often the value is offered.
  std::size_t count(std::string_view feature, std::string_view value) const {
    const auto place = counts_.find({feature, value});
    return place == counts_.end() ? 0 : place->second;
  }

 private:
  std::vector<std::string_view> names_;
  std::map<std::string_view, std::vector<std::string_view>> values_;
  // Always empty. Not a static of the function, because a fork could leave its guard locked.
  std::vector<std::string_view> noValues_;
  std::map<std::pair<std::string_view, std::string_view>, std::size_t> counts_;
};

/// What is offered. Offers of equal name are taken together.
class OfferIndex {
 public:
  explicit OfferIndex(const Offers& offers) {
    for (const auto& offer : offers.protocols) {
      const auto [place, isNew] = protocols_.try_emplace(offer.name);
      if (isNew) names_.push_back(offer.name);
      place->second.add(offer);
    }
  }

  /// The protocols, each once, in order.
  const std::vector<std::string_view>& names() const { return names_; }

  /// Null if the protocol is not offered.
  const OfferedProtocol* find(std::string_view protocol) const {
    const auto place = protocols_.find(protocol);
    return place == protocols_.end() ? nullptr : &place->second;
  }

 private:
  std::vector<std::string_view> names_;
  std::map<std::string_view, OfferedProtocol> protocols_;
};

}  // namespace foundation::corvane::inspect::detail
