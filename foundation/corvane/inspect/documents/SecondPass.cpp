// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/documents/SecondPass.hpp"

#include <utility>

#include "foundation/corvane/inspect/documents/findingSentences.hpp"
#include "foundation/corvane/inspect/text/quoted.hpp"

namespace foundation::corvane::inspect::detail {

namespace {

using common::session::detail::Member;
using common::session::detail::Misfit;

Rule ruleOf(Misfit misfit) noexcept {
  switch (misfit) {  // unreachable: there is no other misfit
    case Misfit::Kind:
      break;
    case Misfit::Empty:
      return Rule::EmptyName;
    case Misfit::Word:
      return Rule::UnknownWord;
    case Misfit::Range:
      return Rule::VersionRange;
  }
  return Rule::WrongKind;
}

// One step of a JSON pointer.
void appendStep(std::string& path, std::string_view name) {
  path += '/';
  for (const char c : name) {
    if (c == '~') {
      path += "~0";
    } else if (c == '/') {
      path += "~1";
    } else {
      path += c;
    }
  }
}

std::string inQuotes(std::string_view name) {
  return '"' + std::string(name) + '"';
}

}  // namespace

SecondPass::SecondPass(std::string_view text, const Losses& losses, const FindingVisitor& visit) noexcept
    : losses_(losses), visit_(visit), places_(text) {}

void SecondPass::beginObject(const json::Reader& reader, Members members) {
  Object object{
      members, places_.at(reader.offset()), path_.size(), path_.size(), 0, 0, seen_.size(), false, false,
      false};
  seen_.resize(seen_.size() + members.size());
  object.lost = losses_.lost[objects_++];
  if (!open_.empty()) {
    const auto& parent = open_.back();
    object.silent = parent.silent || parent.replaced || (parent.lost && isElement_);
    // An object that is no element is a part of the one that it stands in, and shares its result.
    object.lost = object.lost || (parent.lost && !isElement_);
  }
  isElement_ = false;
  open_.push_back(object);
}

void SecondPass::member(const json::Reader& reader, std::size_t index) {
  auto& object = open_.back();
  object.member = index;
  object.elements = 0;
  object.replaced = false;
  path_.resize(object.pathSize);
  if (index == object.members.size()) {
    if (isHeard(Effect::Dropped)) {
      std::string name;
      reader.copyTo(name);
      appendStep(path_, name);
      report(Rule::UnknownMember, Effect::Dropped, places_.at(reader.offset()),
             "nobody reads a member " + quoted(name) + " here: it is passed over");
    }
    return;
  }
  const auto name = object.members[index].name;
  appendStep(path_, name);
  object.memberPathSize = path_.size();
  seen_[object.seen + index] = true;
  const bool replaced = losses_.replaced[members_++];
  if (replaced && isHeard(Effect::Dropped)) {
    report(Rule::RepeatedMember, Effect::Dropped, places_.at(reader.offset()),
           "there is a later " + inQuotes(name) + ", which counts: this one is passed over");
  }
  object.replaced = replaced;
}

void SecondPass::misfit(const json::Reader& reader, Misfit misfit) {
  const auto& object = open_.back();
  const auto& member = object.members[object.member];
  const auto effect = misfit == Misfit::Range ? Effect::RecordLost : effectOn(member);
  if (!isHeard(effect)) return;
  report(ruleOf(misfit), effect, places_.at(reader.offset()),
         inQuotes(member.name) + " is " + describe(reader) + " and should be " +
             (misfit == Misfit::Empty ? "a name" : expected(member)) + ": " +
             consequence(effect, object.members, object.member));
}

void SecondPass::reread(const json::Reader& reader, double /*number*/, unsigned taken) {
  if (!isHeard(Effect::Rounded)) return;
  const auto& object = open_.back();
  report(Rule::FractionalNumber, Effect::Rounded, places_.at(reader.offset()),
         inQuotes(object.members[object.member].name) + " is " + describe(reader) +
             " and should be a whole number: it counts as " + std::to_string(taken));
}

void SecondPass::endObject(const json::Reader& /*reader*/, bool /*whole*/) {
  const auto& object = open_.back();  // whose last member nothing can replace
  for (std::size_t i = 0; i != object.members.size(); ++i) {
    if (seen_[object.seen + i]) continue;
    const auto& member = object.members[i];
    const auto effect = effectOn(member);
    if (!isHeard(effect)) continue;
    path_.resize(object.pathSize);
    appendStep(path_, member.name);
    report(Rule::MissingMember, effect, object.start,
           "there is no " + inQuotes(member.name) + ", which should be " + expected(member) + ": " +
               consequence(effect, object.members, i));
  }
  path_.resize(object.pathSize);
  seen_.resize(object.seen);
  open_.pop_back();
}

void SecondPass::element(const json::Reader& reader) {
  auto& object = open_.back();
  path_.resize(object.memberPathSize);
  appendStep(path_, std::to_string(object.elements++));
  isElement_ = reader.token() == json::Token::ObjectBegin;
  if (isElement_ || !isHeard(Effect::ElementLost)) return;
  report(Rule::NotAnObject, Effect::ElementLost, places_.at(reader.offset()),
         "the element is " + describe(reader) +
             " and should be an object: " + consequence(Effect::ElementLost, object.members, object.member));
}

// Of what is lost, only what lost it is worth telling.
bool SecondPass::isHeard(Effect effect) const noexcept {
  const auto& object = open_.back();
  if (object.silent || object.replaced) return false;
  return !object.lost || effect == Effect::RecordLost || effect == Effect::DocumentLost;
}

Effect SecondPass::effectOn(const Member& member) const noexcept {
  if (!member.required) return Effect::Defaulted;
  return open_.size() == 1 ? Effect::DocumentLost : Effect::RecordLost;
}

void SecondPass::report(Rule rule, Effect effect, const Place& place, std::string sentence) {
  const Finding finding{rule, effect, path_, place.offset, place.line, place.column, std::move(sentence)};
  if (!visit_(finding)) throw Enough{};
}

}  // namespace foundation::corvane::inspect::detail
