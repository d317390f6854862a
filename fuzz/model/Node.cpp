// SPDX-License-Identifier: Apache-2.0
#include "fuzz/model/Node.hpp"

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <map>

#include "fuzz/check.hpp"

namespace fuzz {

namespace {

constexpr std::size_t mostDepth = 128;

bool isIn(char c, std::string_view set) {
  return set.find(c) != std::string_view::npos;
}

std::variant<std::int64_t, std::uint64_t, double> numberOf(const std::string& text) {
  if (text.find_first_of(".eE") == std::string::npos) {
    errno = 0;
    const long long integer = std::strtoll(text.c_str(), nullptr, 10);
    if (errno == 0) return std::int64_t{integer};
    errno = 0;
    const unsigned long long natural = std::strtoull(text.c_str(), nullptr, 10);
    if (errno == 0 && text.front() != '-') return std::uint64_t{natural};
  }
  // The "C" locale is in force here: std::locale::global is for the C library only where the locale has a
  // name.
  return std::strtod(text.c_str(), nullptr);
}

// Whether an escaped low half stands in `raw`, the inside of a string, without a high half before it.
bool hasLoneLowHalf(std::string_view raw) {
  bool afterHigh = false;
  for (std::size_t at = 0; at < raw.size(); ++at) {
    if (raw[at] != '\\') {
      afterHigh = false;
      continue;
    }
    ++at;
    unsigned long unit = 0;
    if (raw[at] == 'u') {
      unit = std::stoul(std::string(raw.substr(at + 1, 4)), nullptr, 16);
      at += 4;
    }
    if (unit >= 0xdc00 && unit <= 0xdfff && !afterHigh) return true;
    afterHigh = unit >= 0xd800 && unit <= 0xdbff;
  }
  return false;
}

class Builder {
 public:
  using Sizes = rapidjson::SizeType;

  Builder(std::string_view text, const rapidjson::MemoryStream& stream,
          const std::map<std::size_t, std::string>& numbers)
      : text_(text), stream_(stream), numbers_(numbers) {}

  Node root;

  bool Null() { return put(Node::Kind::Null); }
  bool Bool(bool truth) { return put(truth ? Node::Kind::True : Node::Kind::False); }
  bool RawNumber(const char*, Sizes, bool) {
    const bool kept = put(Node::Kind::Number);
    auto number = std::string(text_.substr(last_->begin, last_->end - last_->begin));
    if (const auto found = numbers_.find(last_->begin); found != numbers_.end()) {
      number = found->second;
      last_->end = last_->begin + number.size();
    }
    last_->number = numberOf(number);
    return kept;
  }
  bool String(const char* text, Sizes size, bool) {
    const bool kept = put(Node::Kind::String);
    last_->text.assign(text, size);
    return kept && !hasLoneLowHalf(text_.substr(last_->begin + 1, last_->end - last_->begin - 2));
  }
  bool Key(const char* text, Sizes size, bool) {
    const auto begin = tokenBegin();
    end_ = stream_.Tell();
    open_.back()->members.push_back({std::string(text, size), begin, {}});
    return !hasLoneLowHalf(text_.substr(begin + 1, end_ - begin - 2));
  }
  bool StartObject() { return open(Node::Kind::Object); }
  bool EndObject(Sizes) { return close(); }
  bool StartArray() { return open(Node::Kind::Array); }
  bool EndArray(Sizes) { return close(); }

  // Never called, for numbers come raw.
  bool Int(int) { return false; }
  bool Uint(unsigned) { return false; }
  bool Int64(std::int64_t) { return false; }
  bool Uint64(std::uint64_t) { return false; }
  bool Double(double) { return false; }

 private:
  // The reader tells where a token ends; what is between two of them is known.
  std::size_t tokenBegin() const {
    auto at = end_;
    while (isIn(text_[at], " \t\r\n,:")) ++at;
    return at;
  }

  bool put(Node::Kind kind) {
    if (open_.empty()) {
      last_ = &root;
    } else if (open_.back()->is(Node::Kind::Array)) {
      last_ = &open_.back()->elements.emplace_back();
    } else {
      last_ = &open_.back()->members.back().value;
    }
    last_->kind = kind;
    last_->begin = tokenBegin();
    last_->end = end_ = stream_.Tell();
    return true;
  }

  bool open(Node::Kind kind) {
    put(kind);
    open_.push_back(last_);
    return open_.size() <= mostDepth;
  }

  bool close() {
    open_.back()->end = end_ = stream_.Tell();
    open_.pop_back();
    return true;
  }

  std::string_view text_;
  const rapidjson::MemoryStream& stream_;
  const std::map<std::size_t, std::string>& numbers_;  // those that were too big, by where they begin
  std::size_t end_ = 0;                                // of the last token
  Node* last_ = nullptr;
  std::vector<Node*> open_;
};

// The number at `begin`, as far as it goes.
std::string numberAt(std::string_view text, std::size_t begin) {
  auto at = begin;
  const auto digits = [&] {
    while (at < text.size() && isIn(text[at], "0123456789")) ++at;
  };
  if (text[at] == '-') ++at;
  digits();
  if (at + 1 < text.size() && text[at] == '.' && isIn(text[at + 1], "0123456789")) {
    ++at;
    digits();
  }
  if (at + 1 < text.size() && isIn(text[at], "eE")) {
    const std::size_t sign = isIn(text[at + 1], "+-") ? 1 : 0;
    if (at + 1 + sign < text.size() && isIn(text[at + 1 + sign], "0123456789")) {
      at += 1 + sign;
      digits();
    }
  }
  return std::string(text.substr(begin, at - begin));
}

}  // namespace

double Node::asDouble() const {
  return std::visit([](auto value) { return static_cast<double>(value); }, number);
}

const Node* Node::find(std::string_view name) const {
  const Node* found = nullptr;
  for (const auto& member : members) {
    if (member.name == name) found = &member.value;
  }
  return found;
}

std::optional<Node> readNode(std::string_view input) {
  constexpr unsigned flags = rapidjson::kParseNumbersAsStringsFlag;
  std::string text(input);
  std::map<std::size_t, std::string> tooBig;
  for (;;) {
    rapidjson::MemoryStream stream(text.data(), text.size());
    rapidjson::Reader reader;
    Builder builder(text, stream, tooBig);
    const auto result = reader.Parse<flags>(stream, builder);
    // A NUL byte counts as the end of the text there.
    if (!result.IsError() && stream.Tell() == text.size()) return std::move(builder.root);
    if (result.Code() != rapidjson::kParseErrorNumberTooBig) return {};
    const auto begin = result.Offset();
    const auto number = numberAt(text, begin);
    text.replace(begin, number.size(), '0' + std::string(number.size() - 1, ' '));
    tooBig[begin] = number;
  }
}

bool areSameDocument(const Node& one, const Node& other) {
  if (one.kind != other.kind || one.text != other.text) return false;
  if (one.is(Node::Kind::Number) && one.asDouble() != other.asDouble()) return false;
  if (one.elements.size() != other.elements.size() || one.members.size() != other.members.size())
    return false;
  for (std::size_t i = 0; i < one.elements.size(); ++i) {
    if (!areSameDocument(one.elements[i], other.elements[i])) return false;
  }

  return std::all_of(one.members.begin(), one.members.end(), [&](const Member& member) {
    const auto named = [&](const Member& twin) { return twin.name == member.name; };
    return std::count_if(other.members.begin(), other.members.end(), named) == 1 &&
           std::count_if(one.members.begin(), one.members.end(), named) == 1 &&
           areSameDocument(member.value, *other.find(member.name));
  });
}

}  // namespace fuzz
