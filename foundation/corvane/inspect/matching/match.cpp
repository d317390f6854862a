// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/matching/match.hpp"

#include <algorithm>
#include <tuple>
#include <utility>

namespace foundation::corvane::inspect::detail {

using common::session::FeatureHandling;
using common::session::FeatureRequest;
using common::session::FeatureResolution;
using common::session::FeatureStatus;
using common::session::MessageProtocolConfig;
using common::session::MessageProtocolResolution;
using common::session::undefinedVersion;

namespace {

// A feature and a value of it.
using Pair = std::pair<std::string_view, std::string_view>;

Pair pairOf(const FeatureRequest& request) {
  return {request.name, request.value};
}

Pair pairOf(const FeatureResolution& entry) {
  return {entry.name, entry.message};
}

// Errors and warnings of a kind do not contradict each other: they go by the request's handling.
enum class Kind : std::uint8_t { Other, Success, Unsupported, InvalidValue, InvalidHandling };

Kind kindOf(FeatureStatus status) {
  switch (status) {
    case FeatureStatus::success:
      return Kind::Success;
    case FeatureStatus::unsupported_error:
    case FeatureStatus::unsupported_warning:
      return Kind::Unsupported;
    case FeatureStatus::invalid_value_error:
    case FeatureStatus::invalid_value_warning:
      return Kind::InvalidValue;
    case FeatureStatus::invalid_handling:
      return Kind::InvalidHandling;
    default:
      return Kind::Other;
  }
}

// The requests and entries for one feature and value.
class Share {
 public:
  void addRequest(FeatureHandling handling) {
    ++requests_;
    if (isKnown(handling)) ++known_;
  }

  void addEntry(const FeatureResolution& entry, std::size_t position) {
    const auto kind = kindOf(entry.status);
    contradicted_ = contradicted_ || (!entries_.empty() && kind != kind_);
    succeeded_ = succeeded_ || kind == Kind::Success;
    kind_ = kind;
    entries_.push_back(position);
  }

  // How many entries are the next request's. Where there are not enough, some have a handling that is not
  // known, and the server had nothing to say to them.
  std::size_t next(FeatureHandling handling) const {
    if (entries_.size() >= requests_) return entries_.size() / requests_;
    const auto forKnown = std::min(known_, entries_.size());
    if (isKnown(handling)) return takenByKnown_ < forKnown ? 1 : 0;
    return taken_ - takenByKnown_ < entries_.size() - forKnown ? 1 : 0;
  }

  FeatureMatch take(FeatureHandling handling, const std::vector<FeatureResolution>& entries) {
    FeatureMatch match;
    match.succeeded = succeeded_;
    match.contradicted = contradicted_ && !isTold_;
    isTold_ = true;
    const auto count = next(handling);
    if (count > 0) match.first = &entries[entries_[taken_]];
    taken_ += count;
    if (isKnown(handling)) takenByKnown_ += count;
    return match;
  }

  // Whether the entry at `position` is left over when all requests have taken theirs.
  bool isLeft(std::size_t position) const { return taken_ < entries_.size() && position >= entries_[taken_]; }
  bool isContradictedBy(std::size_t position) const {
    return contradicted_ && requests_ == 0 && position == entries_.front();
  }

 private:
  std::size_t requests_ = 0;
  std::size_t known_ = 0;             // requests of a known handling
  std::vector<std::size_t> entries_;  // positions, in order
  std::size_t taken_ = 0;             // how many of the entries the requests so far have got
  std::size_t takenByKnown_ = 0;
  Kind kind_ = Kind::Other;  // of the last entry
  bool contradicted_ = false;
  bool succeeded_ = false;
  bool isTold_ = false;
};

FeatureMatches matchFeatures(const std::vector<FeatureRequest>& requests,
                             const std::vector<FeatureResolution>& entries) {
  std::map<Pair, Share> shares;
  for (const auto& request : requests) shares[pairOf(request)].addRequest(request.handling);
  for (std::size_t i = 0; i < entries.size(); ++i) shares[pairOf(entries[i])].addEntry(entries[i], i);

  FeatureMatches matches;
  matches.requests.reserve(requests.size());
  for (const auto& request : requests) {
    matches.requests.push_back(shares[pairOf(request)].take(request.handling, entries));
  }
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const auto& share = shares[pairOf(entries[i])];
    if (share.isLeft(i)) matches.unasked.push_back({&entries[i], share.isContradictedBy(i)});
  }
  return matches;
}

// What an answer answers, each stretch of equal entries once.
std::vector<Pair> outlineOf(const MessageProtocolResolution& answer) {
  std::vector<Pair> outline;
  for (const auto& entry : answer.resolutions) {
    if (outline.empty() || outline.back() != pairOf(entry)) outline.push_back(pairOf(entry));
  }
  return outline;
}

// Whether the outline is that of an answer to these requests: entries for each in order, but perhaps for
// those without a known handling. Looks at no more of it than there are requests.
bool fits(const MessageProtocolConfig& request, const std::vector<Pair>& outline) {
  std::size_t next = 0;
  for (const auto& feature : request.features) {
    if (next < outline.size() && outline[next] == pairOf(feature)) {
      ++next;
    } else if (isKnown(feature.handling) && (next == 0 || outline[next - 1] != pairOf(feature))) {
      return false;
    }
  }
  return next == outline.size();
}

// The requests and answers for one protocol, in order. Requests that have no version are not among them.
struct Name {
  std::vector<std::size_t> requests;
  std::vector<std::size_t> answers;
};

class Matcher {
 public:
  Matcher(const std::vector<MessageProtocolConfig>& configs,
          const std::vector<MessageProtocolResolution>& resolutions)
      : configs_(configs), resolutions_(resolutions) {}

  Matching run() {
    makeMatches();
    for (auto& [name, positions] : names_) {
      auto& installation = matching_.installations[name];
      fill(installation, positions);
      assign(positions);
      setResults(installation, positions);
    }
    addUnasked();
    for (auto& match : matching_.matches) {
      match.features = matchFeatures(match.request != nullptr ? match.request->features : noRequests_,
                                     match.answer != nullptr ? match.answer->resolutions : noEntries_);
    }
    return std::move(matching_);
  }

 private:
  static constexpr auto nobody = static_cast<std::size_t>(-1);

  void makeMatches() {
    matching_.matches.resize(configs_.size());
    matching_.ofAnswers.assign(resolutions_.size(), nobody);
    for (std::size_t i = 0; i < configs_.size(); ++i) {
      const auto& config = configs_[i];
      auto& name = names_[config.name];
      matching_.matches[i].request = &config;
      matching_.matches[i].installation = &matching_.installations[config.name];
      if (config.version == undefinedVersion) {
        matching_.matches[i].result = RequestResult::WithoutVersion;
      } else {
        name.requests.push_back(i);
      }
    }
    for (std::size_t i = 0; i < resolutions_.size(); ++i) names_[resolutions_[i].name].answers.push_back(i);
  }

  void fill(Installation& installation, const Name& name) const {
    const auto hasVersion = [&](auto i) { return resolutions_[i].version != undefinedVersion; };
    const auto first = std::ranges::find_if(name.answers, hasVersion);
    if (first != name.answers.end()) {
      installation.answer = &resolutions_[*first];
      installation.configuration = configurationOf(*installation.answer);
    }
    installation.isAskedAtSeveralVersions = std::ranges::any_of(name.requests, [&](auto i) {
      return configs_[i].version != configs_[name.requests.front()].version;
    });
  }

  // Entries of one name stay in order, which is that of their addresses.
  static std::vector<const FeatureResolution*> configurationOf(const MessageProtocolResolution& answer) {
    std::vector<const FeatureResolution*> configuration;
    configuration.reserve(answer.resolutions.size());
    for (const auto& entry : answer.resolutions) {
      if (entry.status == FeatureStatus::success) configuration.push_back(&entry);
    }
    std::ranges::sort(configuration, [](const FeatureResolution* one, const FeatureResolution* other) {
      return std::tie(one->name, one) < std::tie(other->name, other);
    });
    const auto haveOneName = [](const FeatureResolution* one, const FeatureResolution* other) {
      return one->name == other->name;
    };
    configuration.erase(std::unique(configuration.begin(), configuration.end(), haveOneName),
                        configuration.end());
    return configuration;
  }

  // In order. Where more was asked for than answered, the versions and then the features tell what was lost.
  void assign(const Name& name) {
    if (name.answers.empty()) return;
    auto spare = name.requests.size() - std::min(name.requests.size(), name.answers.size());
    std::size_t request = spare > 0 ? firstAnswered(name) : 0;
    spare -= std::min(spare, request);
    for (std::size_t next = 0; next < name.answers.size() && request < name.requests.size(); ++next) {
      const auto& answer = resolutions_[name.answers[next]];
      if (spare > 0) {
        const auto outline = outlineOf(answer);
        for (; spare > 0 && next > 0 && !answers(answer, outline, configs_[name.requests[request]]);
             --spare) {
          ++request;
        }
      }
      matching_.matches[name.requests[request]].answer = &answer;
      matching_.ofAnswers[name.answers[next]] = name.requests[request];
      ++request;
    }
  }

  // Whether the answer may be that to a further request: only one at the version installed has an answer.
  static bool answers(const MessageProtocolResolution& answer, const std::vector<Pair>& outline,
                      const MessageProtocolConfig& request) {
    return request.version == answer.version && fits(request, outline);
  }

  // A server that declined a request may install a later one; when it has installed one, all that follow are
  // answered or end the negotiation. So what was lost came first, unless the answer was made as if nothing
  // had ended the negotiation: then the first request was answered, and those at other versions were lost.
  std::size_t firstAnswered(const Name& name) const {
    const auto& answer = resolutions_[name.answers.front()];
    const auto outline = outlineOf(answer);
    const auto request = [&](std::size_t i) -> const MessageProtocolConfig& {
      return configs_[name.requests[i]];
    };
    const auto isAtItsVersion = [&](auto i) { return configs_[i].version == answer.version; };
    const auto answered = static_cast<std::size_t>(std::ranges::count_if(name.requests, isAtItsVersion));
    if (answered == name.answers.size() && answers(answer, outline, request(0))) return 0;

    const auto spare = name.requests.size() - name.answers.size();
    if (fits(request(spare), outline)) return spare;
    for (std::size_t i = 0; i < spare; ++i) {
      if (fits(request(i), outline)) return i;
    }
    return spare;
  }

  void setResults(const Installation& installation, const Name& name) {
    bool isInstalled = false;
    for (const auto i : name.requests) {
      auto& match = matching_.matches[i];
      const bool isAtOdds = isInstalled && match.request->version != installation.answer->version;
      if (match.answer == nullptr) {
        match.result = isAtOdds ? RequestResult::Conflict : RequestResult::Missing;
      } else if (match.answer->version == undefinedVersion) {
        match.result = RequestResult::AnsweredWithoutVersion;
      } else {
        match.result =
            isAtOdds && match.isContradicted() ? RequestResult::Conflict : RequestResult::Installed;
        isInstalled = true;
      }
    }
  }

  void addUnasked() {
    for (std::size_t i = 0; i < resolutions_.size(); ++i) {
      if (matching_.ofAnswers[i] != nobody) continue;
      matching_.ofAnswers[i] = matching_.matches.size();
      auto& match = matching_.matches.emplace_back();
      match.answer = &resolutions_[i];
      match.installation = &matching_.installations[resolutions_[i].name];
    }
  }

  const std::vector<MessageProtocolConfig>& configs_;
  const std::vector<MessageProtocolResolution>& resolutions_;
  const std::vector<FeatureRequest> noRequests_;
  const std::vector<FeatureResolution> noEntries_;
  std::map<std::string_view, Name> names_;
  Matching matching_;
};

}  // namespace

bool isKnown(FeatureHandling handling) noexcept {
  using enum FeatureHandling;
  return handling == required || handling == optional || handling == preferred;
}

std::optional<std::string_view> Installation::valueOf(std::string_view feature) const {
  const auto nameOf = [](const FeatureResolution* entry) { return std::string_view(entry->name); };
  const auto place = std::ranges::lower_bound(configuration, feature, {}, nameOf);
  if (place == configuration.end() || nameOf(*place) != feature) return std::nullopt;
  return (*place)->message;
}

bool ProtocolMatch::isContradicted() const {
  return answer != nullptr && answer->version != undefinedVersion &&
         answer->version != installation->answer->version;
}

Matching match(const std::vector<MessageProtocolConfig>& configs,
               const std::vector<MessageProtocolResolution>& resolutions) {
  return Matcher(configs, resolutions).run();
}

}  // namespace foundation::corvane::inspect::detail
