// SPDX-License-Identifier: Apache-2.0
#include "fuzz/model/findings.hpp"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>

#include "foundation/corvane/inspect/diagnose.hpp"
#include "foundation/json/Reader.hpp"
#include "fuzz/check.hpp"

namespace fuzz {

namespace {

using foundation::corvane::inspect::DocumentKind;
using foundation::corvane::inspect::Effect;
using foundation::corvane::inspect::Finding;
using foundation::corvane::inspect::FindingVisitor;
using foundation::corvane::inspect::Rule;
using Kind = Node::Kind;

// --- what the documents should look like

enum class Type { Text, Name, Word, Major, Minor, Object, List };

struct Field {
  std::string name;
  bool required;
  Type type;
  std::vector<Field> fields;       // of the object, or of each element of the list
  std::vector<std::string> words;  // of which the text is one
};

using Fields = std::vector<Field>;  // in the order of their names

const Fields version{{"major", false, Type::Major, {}, {}}, {"minor", false, Type::Minor, {}, {}}};

const Fields request{{"handling", true, Type::Word, {}, {"required", "optional", "preferred"}},
                     {"name", true, Type::Text, {}, {}},
                     {"value", true, Type::Text, {}, {}}};

const Fields outcome{{"message", false, Type::Text, {}, {}},
                     {"name", true, Type::Text, {}, {}},
                     {"status",
                      true,
                      Type::Word,
                      {},
                      {"success", "unsupported_error", "unsupported_warning", "invalid_value_error",
                       "invalid_value_warning", "invalid_handling"}}};

const Fields offered{{"handling", false, Type::Word, {}, {"required", "optional", "preferred", "undefined"}},
                     {"name", true, Type::Name, {}, {}},
                     {"value", true, Type::Text, {}, {}}};

const Fields configs{{"protocolConfigs",
                      true,
                      Type::List,
                      {{"features", false, Type::List, request, {}},
                       {"name", true, Type::Name, {}, {}},
                       {"version", true, Type::Object, version, {}}},
                      {}}};

const Fields resolutions{{"protocolResolutions",
                          true,
                          Type::List,
                          {{"name", true, Type::Name, {}, {}},
                           {"resolutions", false, Type::List, outcome, {}},
                           {"version", true, Type::Object, version, {}}},
                          {}}};

const Fields offers{{"protocolOffers",
                     true,
                     Type::List,
                     {{"features", false, Type::List, offered, {}}, {"name", true, Type::Name, {}, {}}},
                     {}},
                    {"software",
                     false,
                     Type::Object,
                     {{"name", false, Type::Text, {}, {}}, {"version", false, Type::Text, {}, {}}},
                     {}}};

const Fields& fieldsOf(DocumentKind document) {
  if (document == DocumentKind::ProtocolConfigs) return configs;
  return document == DocumentKind::ProtocolResolutions ? resolutions : offers;
}

// --- what they do look like

const Field* fieldNamed(const Fields& fields, const std::string& name) {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const Field& field) { return field.name == name; });
  return found == fields.end() ? nullptr : &*found;
}

std::optional<Rule> misfit(const Node& node, const Field& field);

// Whether the object as a whole goes down with one of its members: it lacks one that it must have, or a
// number of it is out of range.
bool isLost(const Node& object, const Fields& fields) {
  return std::any_of(fields.begin(), fields.end(), [&](const Field& field) {
    const auto* node = object.find(field.name);
    if (node == nullptr) return field.required;
    const auto rule = misfit(*node, field);
    if (rule == Rule::VersionRange) return true;
    if (rule) return field.required;
    return field.type == Type::Object && isLost(*node, field.fields);
  });
}

std::optional<Rule> misfit(const Node& node, const Field& field) {
  switch (field.type) {
    case Type::List:
      if (!node.is(Kind::Array)) return Rule::WrongKind;
      break;
    case Type::Object:
      if (!node.is(Kind::Object)) return Rule::WrongKind;
      break;
    case Type::Major:
    case Type::Minor: {
      if (!node.is(Kind::Number)) return Rule::WrongKind;
      const double number = std::trunc(node.asDouble() + 0.01);
      if (number <= -1.0 || number >= std::ldexp(1.0, 32)) return Rule::VersionRange;
      if (field.type == Type::Major && number == 65535.0) return Rule::VersionRange;
      break;
    }
    case Type::Text:
    case Type::Name:
    case Type::Word:
      if (!node.is(Kind::String)) return Rule::WrongKind;
      if (field.type == Type::Name && node.text.empty()) return Rule::EmptyName;
      if (field.type == Type::Word && std::count(field.words.begin(), field.words.end(), node.text) == 0) {
        return Rule::UnknownWord;
      }
  }
  return {};
}

std::string step(std::string name) {
  for (std::size_t at = 0; (at = name.find_first_of("~/", at)) != std::string::npos; at += 2) {
    name.replace(at, 1, name[at] == '~' ? "~0" : "~1");
  }
  return '/' + name;
}

class Teller {
 public:
  std::vector<Finding> findings;

  void tellObject(const Node& object, const Fields& fields, const std::string& path, bool lost, bool isRoot) {
    const auto effectOn = [&](const Field& field) {
      if (!field.required) return Effect::Defaulted;
      return isRoot ? Effect::DocumentLost : Effect::RecordLost;
    };
    for (auto member = object.members.begin(); member != object.members.end(); ++member) {
      const auto here = path + step(member->name);
      const auto* field = fieldNamed(fields, member->name);
      if (field == nullptr) {
        tell(Rule::UnknownMember, Effect::Dropped, here, member->begin, lost);
      } else if (std::any_of(member + 1, object.members.end(),
                             [&](const Member& later) { return later.name == member->name; })) {
        tell(Rule::RepeatedMember, Effect::Dropped, here, member->begin, lost);
      } else {
        tellValue(member->value, *field, here, effectOn(*field), lost);
      }
    }
    for (const auto& field : fields) {
      if (object.find(field.name) != nullptr) continue;
      tell(Rule::MissingMember, effectOn(field), path + step(field.name), object.begin, lost);
    }
  }

 private:
  void tellValue(const Node& value, const Field& field, const std::string& path, Effect effect, bool lost) {
    if (const auto rule = misfit(value, field)) {
      tell(*rule, *rule == Rule::VersionRange ? Effect::RecordLost : effect, path, value.begin, lost);
    } else if (field.type == Type::Object) {
      tellObject(value, field.fields, path, lost, false);
    } else if (field.type == Type::List) {
      for (std::size_t i = 0; i < value.elements.size(); ++i) {
        const auto& element = value.elements[i];
        const auto here = path + '/' + std::to_string(i);
        if (!element.is(Kind::Object)) {
          tell(Rule::NotAnObject, Effect::ElementLost, here, element.begin, lost);
        } else if (!lost) {
          tellObject(element, field.fields, here, isLost(element, field.fields), false);
        }
      }
    } else if (value.is(Kind::Number) && std::trunc(value.asDouble() + 0.01) != value.asDouble()) {
      tell(Rule::FractionalNumber, Effect::Rounded, path, value.begin, lost);
    }
  }

  void tell(Rule rule, Effect effect, const std::string& path, std::size_t offset, bool lost) {
    if (lost && effect != Effect::RecordLost && effect != Effect::DocumentLost) return;
    findings.push_back({rule, effect, path, offset, 1, 1, {}});
  }
};

// --- what holds of any finding

void checkForm(const Finding& finding, std::string_view text) {
  FUZZ_CHECK(finding.offset <= text.size());
  const auto before = text.substr(0, finding.offset);
  FUZZ_CHECK(finding.line == 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')));
  FUZZ_CHECK(finding.column == finding.offset - (before.rfind('\n') + 1) + 1);  // npos + 1 is 0

  constexpr std::size_t longest = 600;  // six for each of 40 bytes, and the sentence around them
  FUZZ_CHECK(!finding.message.empty() && finding.message.size() <= longest && finding.message.back() != '.');
  FUZZ_CHECK(std::all_of(finding.message.begin(), finding.message.end(),
                         [](char c) { return static_cast<unsigned char>(c) >= 0x20 && c != 0x7f; }));
}

void checkLost(const Finding& finding, Rule rule, std::size_t earliest, std::size_t latest) {
  FUZZ_CHECK(finding.rule == rule);
  FUZZ_CHECK(finding.effect == Effect::DocumentLost);
  FUZZ_CHECK(finding.pointer.empty());
  FUZZ_CHECK(finding.offset >= earliest && finding.offset <= latest);
}

std::size_t faultIn(std::string_view text) {
  foundation::json::Reader reader(text);
  while (reader.next() != foundation::json::Token::Error)
    FUZZ_CHECK(reader.token() != foundation::json::Token::End);
  return reader.offset();
}

void checkFindings(const std::vector<Finding>& findings, const std::vector<Finding>& deserved) {
  FUZZ_CHECK(findings.size() == deserved.size());
  for (std::size_t i = 0; i < findings.size(); ++i) {
    FUZZ_CHECK(findings[i].rule == deserved[i].rule);
    FUZZ_CHECK(findings[i].effect == deserved[i].effect);
    FUZZ_CHECK(findings[i].pointer == deserved[i].pointer);
    FUZZ_CHECK(findings[i].offset == deserved[i].offset);
  }
}

void checkThatVisitorsMayStop(DocumentKind document, std::string_view text,
                              const std::vector<Finding>& findings) {
  const auto most = (findings.size() + 1) / 2;
  std::vector<Finding> some;
  const FindingVisitor visit = [&](const Finding& finding) {
    some.push_back(finding);
    return some.size() < most;
  };
  diagnose(document, text, visit);
  FUZZ_CHECK(std::equal(some.begin(), some.end(), findings.begin(),
                        findings.begin() + static_cast<std::ptrdiff_t>(most)));
}

void checkDocumentOf(std::string_view text, const std::optional<Node>& tree) {
  if (!tree) return;
  std::optional<DocumentKind> first;
  for (const auto& member : tree->members) {
    for (const auto document :
         {DocumentKind::ProtocolConfigs, DocumentKind::ProtocolResolutions, DocumentKind::ProtocolOffers}) {
      if (!first && member.name == listName(document)) first = document;
    }
  }
  FUZZ_CHECK(foundation::corvane::inspect::documentKindOf(text) == first);
}

bool isWritten(const Node& tree, const std::string& written) {
  const auto writtenTree = readNode(written);
  FUZZ_CHECK(writtenTree);
  return areSameDocument(tree, *writtenTree);
}

}  // namespace

std::vector<Finding> findingsOf(DocumentKind document, const Node& tree) {
  Teller teller;
  teller.tellObject(tree, fieldsOf(document), "", isLost(tree, fieldsOf(document)), true);
  return std::move(teller.findings);
}

void checkDiagnosis(DocumentKind document, std::string_view text, const std::optional<Node>& tree,
                    const std::string& written, bool kept) {
  const auto findings = diagnose(document, text);

  for (const auto& finding : findings) checkForm(finding, text);
  if (tree && tree->is(Kind::Object)) {
    checkFindings(findings, findingsOf(document, *tree));
  } else {
    FUZZ_CHECK(findings.size() == 1);
    if (tree) {
      checkLost(findings[0], Rule::NotAnObject, 0, tree->begin);
    } else {
      checkLost(findings[0], Rule::Syntax, faultIn(text), faultIn(text));
    }
  }
  const bool same = kept && tree && isWritten(*tree, written);
  FUZZ_CHECK(findings.empty() == same);
  // Seldom, for it takes an exception.
  if (findings.size() > 1 && text.size() % 16 == 0) checkThatVisitorsMayStop(document, text, findings);
  checkDocumentOf(text, tree);
}

}  // namespace fuzz
