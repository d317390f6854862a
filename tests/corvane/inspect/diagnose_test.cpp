// SPDX-License-Identifier: Apache-2.0
#include "foundation/corvane/inspect/diagnose.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "foundation/corvane/common/session.hpp"
#include "foundation/corvane/inspect/Offers.hpp"
#include "tests/corvane/inspect/documents/RandomDocument.hpp"
#include "tests/corvane/inspect/documents/Tree.hpp"

namespace {

using namespace foundation::corvane::inspect;
using namespace foundation::corvane::common::session;
using namespace inspect_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr auto documents = {DocumentKind::ProtocolConfigs, DocumentKind::ProtocolResolutions,
                            DocumentKind::ProtocolOffers};

/// What the reader of the document makes of the text, written again.
std::string writtenBack(DocumentKind document, const std::string& text) {
  if (document == DocumentKind::ProtocolConfigs) return toJSON(toConfigs(text));
  if (document == DocumentKind::ProtocolResolutions) return toJSON(toResolutions(text));
  return toJSON(toOffers(text));
}

std::string emptyDocument(DocumentKind document) {
  return writtenBack(document, "");
}

/// As many as the reader returns.
std::size_t countOfRecords(DocumentKind document, const std::string& text) {
  if (document == DocumentKind::ProtocolConfigs) return toConfigs(text).size();
  if (document == DocumentKind::ProtocolResolutions) return toResolutions(text).size();
  return toOffers(text).protocols.size();
}

template <class Record, class Element>
bool holdDefault(const std::vector<Record>& records, std::vector<Element> Record::*list) {
  return std::ranges::any_of(records, [list](const Record& record) {
    return record == Record{} || std::ranges::count(record.*list, Element{}) != 0;
  });
}

bool holdsDefault(DocumentKind document, const std::string& text) {
  if (document == DocumentKind::ProtocolConfigs) {
    return holdDefault(toConfigs(text), &MessageProtocolConfig::features);
  }
  if (document == DocumentKind::ProtocolResolutions) {
    return holdDefault(toResolutions(text), &MessageProtocolResolution::resolutions);
  }
  return holdDefault(toOffers(text).protocols, &ProtocolOffer::features);
}

/// The reader kept everything: a list as long as the document's, no default record, and the same again when
/// it is written.
bool isKept(DocumentKind document, const std::string& text) {
  if (!isJson(text)) return false;
  const auto tree = treeOf(text);
  const auto* list = memberOf(tree, listName(document));
  return list != nullptr && list->kind == Tree::Kind::Array &&
         list->elements.size() == countOfRecords(document, text) && !holdsDefault(document, text) &&
         areEqual(tree, treeOf(writtenBack(document, text)));
}

// ---- what the findings say, done to the document

/// The default record that takes the place of an object, told by what the object stands in.
std::string defaultRecord(DocumentKind document, bool isFeature) {
  if (isFeature) {
    if (document == DocumentKind::ProtocolResolutions) return FeatureResolution::toJson({});
    return R"({"handling":"undefined","name":"","value":""})";
  }
  if (document == DocumentKind::ProtocolConfigs) return MessageProtocolConfig::toJson({});
  if (document == DocumentKind::ProtocolResolutions) return MessageProtocolResolution::toJson({});
  return R"({"features":[],"name":""})";
}

std::string defaultMember(const std::string& pointer) {
  const auto name = pointer.substr(pointer.rfind('/') + 1);
  if (name == "major" || name == "minor") return "0";
  if (name == "features" || name == "resolutions") return "[]";
  if (name == "software") return R"({"name":"","version":""})";
  return name == "handling" ? R"("undefined")" : R"("")";
}

constexpr auto nowhere = static_cast<std::size_t>(-1);

/// A tree from another text, whose offsets mean nothing here.
Tree foreign(const std::string& text) {
  const auto forget = [](Tree& tree, const auto& again) -> void {
    tree.begin = tree.end = nowhere;
    for (auto& member : tree.members) {
      member.offset = nowhere;
      again(member.value, again);
    }
    for (auto& element : tree.elements) again(element, again);
  };
  auto tree = treeOf(text);
  forget(tree, forget);
  return tree;
}

/// Does to a document what a finding tells.
class Repair {
 public:
  Repair(DocumentKind document, const Finding& finding) : document_(document), finding_(finding) {}

  void apply(Tree& tree, int depth = 0, bool isElement = false) {
    if (tree.begin == finding_.offset && finding_.rule == Rule::MissingMember &&
        finding_.effect == Effect::Defaulted) {
      tree.members.push_back({lastStep(), nowhere, foreign(defaultMember(finding_.pointer))});
      return;
    }
    if (finding_.effect == Effect::Dropped) {
      std::erase_if(tree.members, [&](const auto& member) { return member.offset == finding_.offset; });
    }
    if (finding_.effect == Effect::ElementLost) {
      std::erase_if(tree.elements, [&](const auto& element) { return element.begin == finding_.offset; });
    }
    const bool isValue = tree.begin == finding_.offset;
    if (isValue && finding_.effect == Effect::Defaulted) tree = foreign(defaultMember(finding_.pointer));
    if (isValue && finding_.effect == Effect::Rounded) {
      tree.number = static_cast<unsigned>(tree.number + 0.01);
    }
    for (auto& member : tree.members) {
      if (contains(member.value)) apply(member.value, depth);
    }
    for (auto& element : tree.elements) {
      if (contains(element)) apply(element, depth + 1, true);
    }
    // From the inside out: the innermost element of a list is the record.
    if (finding_.effect == Effect::RecordLost && isElement && !done_) {
      const auto [begin, end] = std::pair(tree.begin, tree.end);
      tree = foreign(defaultRecord(document_, depth == 2));
      tree.begin = begin;
      tree.end = end;
      done_ = true;
    }
  }

 private:
  bool contains(const Tree& tree) const {
    return tree.begin <= finding_.offset && finding_.offset < tree.end;
  }
  std::string lastStep() const { return finding_.pointer.substr(finding_.pointer.rfind('/') + 1); }

  DocumentKind document_;
  const Finding& finding_;
  bool done_ = false;
};

/// The document as its reader takes it, if the findings tell the truth.
Tree repaired(DocumentKind document, const std::string& text, const std::vector<Finding>& findings) {
  for (const auto& finding : findings) {
    if (finding.effect == Effect::DocumentLost) return treeOf(emptyDocument(document));
  }
  auto tree = treeOf(text);
  for (const auto& finding : findings) Repair(document, finding).apply(tree);
  return tree;
}

// ---- single findings

struct Case {
  DocumentKind document;
  std::string text;  // with an @ where the finding is
  Rule rule;
  Effect effect;
  std::string pointer;
};

constexpr auto configs = DocumentKind::ProtocolConfigs;
constexpr auto resolutions = DocumentKind::ProtocolResolutions;
constexpr auto offers = DocumentKind::ProtocolOffers;

std::string config(const std::string& object) {
  return R"({"protocolConfigs":[)" + object + "]}";
}
std::string request(const std::string& object) {
  return config(R"({"name":"p","version":{"major":1,"minor":0},"features":[)" + object + "]}");
}
std::string resolution(const std::string& object) {
  return R"({"protocolResolutions":[{"name":"p","version":{"major":1,"minor":0},"resolutions":[)" + object +
         "]}]}";
}
std::string versioned(const std::string& version) {
  return config(R"({"name":"p","features":[],"version":)" + version + "}");
}
std::string offer(const std::string& object) {
  return R"({"software":{"name":"s","version":"1"},"protocolOffers":[)" + object + "]}";
}

const std::string list = "/protocolConfigs";
const std::string first = list + "/0";
const std::string feature = first + "/features/0";
const std::string outcome = "/protocolResolutions/0/resolutions/0";

TEST(diagnose, TellsOfEachSilentPath) {
  using enum Rule;
  using enum Effect;
  const std::vector<Case> cases{
      // the whole document
      {configs, "@", Syntax, DocumentLost, ""},
      {configs, "{\"protocolConfigs\":[@", Syntax, DocumentLost, ""},
      {configs, "{\"protocolConfigs\":[]} @x", Syntax, DocumentLost, ""},
      {configs, "@[]", NotAnObject, DocumentLost, ""},
      {configs, "@ 7", NotAnObject, DocumentLost, ""},
      {configs, "@{}", MissingMember, DocumentLost, list},
      {configs, R"({"protocolConfigs":@"x"})", WrongKind, DocumentLost, list},
      {resolutions, "@{}", MissingMember, DocumentLost, "/protocolResolutions"},
      {offers, R"({"protocolOffers":@{}})", WrongKind, DocumentLost, "/protocolOffers"},
      // elements and members
      {configs, R"({"protocolConfigs":[@7]})", NotAnObject, ElementLost, list + "/0"},
      {configs, R"({"protocolConfigs":[],@"~/":1})", UnknownMember, Dropped, "/~0~1"},
      {configs, R"({@"protocolConfigs":[{}],"protocolConfigs":[]})", RepeatedMember, Dropped, list},
      // a request for a protocol
      {configs, config(R"(@{"version":{"major":1,"minor":0},"features":[]})"), MissingMember, RecordLost,
       first + "/name"},
      {configs, config(R"({"name":@7,"version":{"major":1,"minor":0},"features":[]})"), WrongKind, RecordLost,
       first + "/name"},
      {configs, config(R"({"name":@"","version":{"major":1,"minor":0},"features":[]})"), EmptyName,
       RecordLost, first + "/name"},
      {configs, config(R"(@{"name":"p","features":[]})"), MissingMember, RecordLost, first + "/version"},
      {configs, versioned(R"(@"2.1")"), WrongKind, RecordLost, first + "/version"},
      {configs, config(R"(@{"name":"p","version":{"major":1,"minor":0}})"), MissingMember, Defaulted,
       first + "/features"},
      {configs, config(R"({"name":"p","version":{"major":1,"minor":0},"features":@{}})"), WrongKind,
       Defaulted, first + "/features"},
      {configs, config(R"({"name":"p","version":{"major":1,"minor":0},"features":[@null]})"), NotAnObject,
       ElementLost, feature},
      // versions
      {configs, versioned(R"(@{"minor":0})"), MissingMember, Defaulted, first + "/version/major"},
      {configs, versioned(R"(@{"major":1})"), MissingMember, Defaulted, first + "/version/minor"},
      {configs, versioned(R"({"major":@"1","minor":0})"), WrongKind, Defaulted, first + "/version/major"},
      {configs, versioned(R"({"major":@2.995,"minor":0})"), FractionalNumber, Rounded,
       first + "/version/major"},
      {configs, versioned(R"({"major":0,"minor":@-0.5})"), FractionalNumber, Rounded,
       first + "/version/minor"},
      {configs, versioned(R"({"major":@-1.5,"minor":0})"), VersionRange, RecordLost,
       first + "/version/major"},
      {configs, versioned(R"({"major":0,"minor":@4294967296})"), VersionRange, RecordLost,
       first + "/version/minor"},
      {configs, versioned(R"({"major":@65535,"minor":0})"), VersionRange, RecordLost,
       first + "/version/major"},
      {configs, versioned(R"({"major":1,"minor":0,@"patch":3})"), UnknownMember, Dropped,
       first + "/version/patch"},
      // a request for a feature
      {configs, request(R"({"handling":@"Required","name":"f","value":"v"})"), UnknownWord, RecordLost,
       feature + "/handling"},
      {configs, request(R"({"handling":@"undefined","name":"f","value":"v"})"), UnknownWord, RecordLost,
       feature + "/handling"},
      {configs, request(R"({"handling":@1,"name":"f","value":"v"})"), WrongKind, RecordLost,
       feature + "/handling"},
      {configs, request(R"(@{"handling":"required","name":"f"})"), MissingMember, RecordLost,
       feature + "/value"},
      {configs, request(R"({"handling":"required","name":@7,"value":"v"})"), WrongKind, RecordLost,
       feature + "/name"},
      {configs, request(R"({"handling":"required","name":"f","value":@true})"), WrongKind, RecordLost,
       feature + "/value"},
      {configs, request(R"({"handling":"required","name":"f","value":"v",@"Value":"w"})"), UnknownMember,
       Dropped, feature + "/Value"},
      // what became of a feature
      {resolutions, resolution(R"({"name":"f","status":@"undefined","message":"v"})"), UnknownWord,
       RecordLost, outcome + "/status"},
      {resolutions, resolution(R"(@{"name":"f","message":"v"})"), MissingMember, RecordLost,
       outcome + "/status"},
      {resolutions, resolution(R"(@{"status":"success","message":"v"})"), MissingMember, RecordLost,
       outcome + "/name"},
      {resolutions, resolution(R"(@{"name":"f","status":"success"})"), MissingMember, Defaulted,
       outcome + "/message"},
      {resolutions, resolution(R"({"name":"f","status":"success","message":@[]})"), WrongKind, Defaulted,
       outcome + "/message"},
      // offers
      {offers, R"(@{"protocolOffers":[]})", MissingMember, Defaulted, "/software"},
      {offers, R"({"protocolOffers":[],"software":@{"name":"s"}})", MissingMember, Defaulted,
       "/software/version"},
      {offers, R"({"protocolOffers":[],"software":@"s"})", WrongKind, Defaulted, "/software"},
      {offers, offer(R"(@{"features":[]})"), MissingMember, RecordLost, "/protocolOffers/0/name"},
      {offers, offer(R"(@{"name":"p"})"), MissingMember, Defaulted, "/protocolOffers/0/features"},
      {offers, offer(R"({"name":"p","features":[@{"name":"f","value":"v"}]})"), MissingMember, Defaulted,
       "/protocolOffers/0/features/0/handling"},
      {offers, offer(R"({"name":"p","features":[{"handling":"undefined","name":@"","value":"v"}]})"),
       EmptyName, RecordLost, "/protocolOffers/0/features/0/name"},
  };
  for (const auto& [document, marked, rule, effect, pointer] : cases) {
    const auto offset = marked.find('@');
    const auto text = marked.substr(0, offset) + marked.substr(offset + 1);
    const auto findings = diagnose(document, text);

    ASSERT_THAT(findings, SizeIs(1)) << text;
    EXPECT_STREQ(toCString(findings[0].rule), toCString(rule)) << text;
    EXPECT_STREQ(toCString(findings[0].effect), toCString(effect)) << text;
    EXPECT_EQ(findings[0].pointer, pointer) << text;
    EXPECT_EQ(findings[0].offset, offset) << text;
    EXPECT_EQ(findings[0].line, 1U) << text;
    EXPECT_EQ(findings[0].column, offset + 1) << text;
    EXPECT_FALSE(isKept(document, text)) << text;
  }
}

TEST(diagnose, FindsNothingInWhatTheWritersWrite) {
  const std::vector<MessageProtocolConfig> requests{
      {"a\"\n\xff", {0, 65535}, {{"", "", FeatureHandling::preferred}}}, {"b", {4294967295, 0}, {}}};
  const std::vector<MessageProtocolResolution> answer{
      {"a", {2, 1}, {{"", "", FeatureStatus::invalid_handling}}}};
  const Offers offered{"server", "", {{"p", {{"f", "", FeatureHandling::undefined}}}, {"p", {}}}};

  EXPECT_THAT(diagnose(toJSON(requests)), IsEmpty());
  EXPECT_THAT(diagnose(toJSON(answer)), IsEmpty());
  EXPECT_THAT(diagnose(toJSON(offered)), IsEmpty());
}

TEST(diagnose, FindsNothingInMembersOfAnyOrderAndNumbersOfAnySpelling) {
  const std::string text =
      " {\n\"protocolConfigs\" : "
      "[{\"version\":{\"minor\":0.0,\"major\":2e0},\"n\\u0061me\":\"p\",\"features\":[]}]}\n";

  EXPECT_THAT(diagnose(text), IsEmpty());
}

TEST(diagnose, OfALostRecordTellsOnlyWhatLostIt) {
  const auto text = config(
      R"({"features":[{"handling":"Required"},7],"name":"","other":1,"version":{"major":1.5,"major":65535,"x":0}})");

  std::vector<std::string> pointers;
  for (const auto& finding : diagnose(text)) pointers.push_back(finding.pointer);

  EXPECT_THAT(pointers, ElementsAre(first + "/name", first + "/version/major"));
}

TEST(diagnose, OfAReplacedMemberTellsOnlyThatItWas) {
  const auto text = config(
      R"({"name":"","name":"p","features":[1,{}],"features":[],"version":"x","version":{"major":1,"minor":0}})");

  const auto findings = diagnose(text);

  ASSERT_THAT(findings, SizeIs(3));
  for (const auto& finding : findings) EXPECT_EQ(finding.rule, Rule::RepeatedMember);
}

TEST(diagnose, OfATextThatIsNoJsonTellsOnlyThat) {
  const auto findings = diagnose(R"({"protocolConfigs":[7,8,{"name":"p"}],"x":tru})");

  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_EQ(findings[0].rule, Rule::Syntax);
  EXPECT_EQ(findings[0].offset, 45U);
}

TEST(diagnose, CountsLinesAndColumnsFromOneInBytes) {
  const auto findings = diagnose("{\n\n \"protocolConfigs\": [\r\n  \"\xc3\xa9\", 7]}");

  ASSERT_THAT(findings, SizeIs(2));
  EXPECT_EQ(findings[0].line, 4U);
  EXPECT_EQ(findings[0].column, 3U);
  EXPECT_EQ(findings[1].line, 4U);
  EXPECT_EQ(findings[1].column, 9U);
}

TEST(diagnose, SaysWhatItFoundAndWhatComesOfIt) {
  const auto findings = diagnose(request(R"({"handling":"Required","name":"f","value":"v"})"));

  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_EQ(
      findings[0].message,
      R"("handling" is the string "Required" and should be one of "required", "optional", "preferred": )"
      "the request for the feature counts as an empty one");
}

TEST(diagnose, SaysWhyATextIsNoJson) {
  const std::string deep(129, '[');

  EXPECT_EQ(diagnose("").at(0).message, "the text is empty: the whole document counts as empty");
  EXPECT_EQ(diagnose("{").at(0).message, "the text ends too early: the whole document counts as empty");
  EXPECT_EQ(diagnose("{} {").at(0).message,
            R"(more text after the end of the document: "{": the whole document counts as empty)");
  EXPECT_EQ(diagnose("{\"a\" 7}").at(0).message,
            R"(no JSON from here on: "7}": the whole document counts as empty)");
  EXPECT_EQ(diagnose("{\"a\":" + deep).at(0).message,
            "nested deeper than 128 levels: the whole document counts as empty");
}

TEST(diagnose, CutsWhatItQuotesAndEscapesControlCharacters) {
  const auto findings = diagnose(
      request(R"({"handling":"\u001b[2J)" + std::string(1000, 'x') + R"(","name":"f","value":"v"})"));

  ASSERT_THAT(findings, SizeIs(1));
  EXPECT_THAT(findings[0].message, HasSubstr(R"("\x1b[2Jxxxxx)"));
  EXPECT_LT(findings[0].message.size(), 250U);
  EXPECT_EQ(findings[0].message.find('\x1b'), std::string::npos);
}

TEST(diagnose, EndsWhenTheVisitorHasHadEnough) {
  int calls = 0;

  diagnose(R"({"protocolConfigs":[1,2,3,4]})", [&](const Finding&) { return ++calls < 2; });

  EXPECT_EQ(calls, 2);
}

TEST(diagnose, LetsTheVisitorsExceptionThrough) {
  const auto visit = [](const Finding&) -> bool { throw std::runtime_error("mine"); };

  EXPECT_THROW(diagnose("{}", visit), std::runtime_error);
  EXPECT_THROW(diagnose("{", visit), std::runtime_error);
}

TEST(diagnose, ReadsTheDocumentThatTheTextMeansToBe) {
  EXPECT_THAT(diagnose(R"({"protocolResolutions":[]})"), IsEmpty());
  EXPECT_THAT(diagnose(R"({"protocolOffers":[],"software":{"name":"","version":""}})"), IsEmpty());
  EXPECT_EQ(diagnose(R"({"protocolResolutions":[],"protocolConfigs":[]})").at(0).pointer, list);
  EXPECT_EQ(diagnose(R"({"x":1})").at(0).pointer, list);
}

// The pointers of all findings, in order.
std::vector<std::string> pointersOf(const std::string& text) {
  std::vector<std::string> pointers;
  for (const auto& finding : diagnose(text)) pointers.push_back(finding.pointer);
  return pointers;
}

TEST(diagnose, CountsTheElementsOfAListFromZero) {
  EXPECT_THAT(pointersOf(R"({"protocolConfigs":[1,2,3]})"),
              ElementsAre(list + "/0", list + "/1", list + "/2"));
  EXPECT_THAT(pointersOf(R"({"protocolConfigs":[1,2],"protocolConfigs":[3]})"),
              ElementsAre(list, list + "/0"));
}

TEST(diagnose, PointsAtEachOfSeveralMembersThatAreMissing) {
  EXPECT_THAT(pointersOf(config(R"({"features":[]})")), ElementsAre(first + "/name", first + "/version"));
}

TEST(diagnose, SaysNothingOfWhatStandsDeepInAReplacedMember) {
  EXPECT_THAT(
      pointersOf(R"({"protocolConfigs":[{"name":"p","version":{"major":1,"minor":0,"x":1},"features":[]}],)"
                 R"("protocolConfigs":[]})"),
      ElementsAre(list));
}

TEST(diagnose, FindsNothingInAnObjectThatIsNoneOfTheDocuments) {
  EXPECT_THAT(diagnose(static_cast<DocumentKind>(3), R"({"protocolConfigs":7})"), IsEmpty());
  EXPECT_THAT(diagnose(static_cast<DocumentKind>(3), "[]"), SizeIs(1));
}

// ---- what holds of all documents

TEST(diagnose, FindsNothingExactlyInDocumentsThatTheReaderKeepsWhole) {
  RandomDocument random(1);
  int kept = 0;
  int others = 0;
  for (int i = 0; i < 4'000; ++i) {
    for (const auto document : documents) {
      const auto text = random.next(document);
      const bool isWhole = isKept(document, text);
      ++(isWhole ? kept : others);
      ASSERT_EQ(diagnose(document, text).empty(), isWhole) << text;
    }
  }
  EXPECT_GT(kept, 1'000);
  EXPECT_GT(others, 1'000);
}

TEST(diagnose, TellsExactlyWhatTheReaderDoes) {
  RandomDocument random(2);
  for (int i = 0; i < 4'000; ++i) {
    for (const auto document : documents) {
      const auto text = random.next(document);
      const auto findings = diagnose(document, text);
      ASSERT_TRUE(areEqual(repaired(document, text, findings), treeOf(writtenBack(document, text))))
          << text << '\n'
          << writtenBack(document, text);
    }
  }
}

TEST(diagnose, ToleratesWhatIsHardlyJson) {
  RandomDocument random(3);
  for (int i = 0; i < 4'000; ++i) {
    for (const auto document : documents) {
      const auto text = random.spoiled(random.next(document));
      const auto findings = diagnose(document, text);
      ASSERT_EQ(findings.empty(), isKept(document, text)) << text;
      for (const auto& finding : findings) {
        ASSERT_LE(finding.offset, text.size()) << text;
        ASSERT_EQ(finding.line,
                  1U + static_cast<std::size_t>(std::count(
                           text.begin(), text.begin() + static_cast<std::ptrdiff_t>(finding.offset), '\n')))
            << text;
      }
    }
  }
}

// Minutes, if anything were quadratic.
TEST(diagnose, TakesLinearTimeForManyEqualNamesElementsAndLines) {
  constexpr std::size_t many = 100'000;
  std::string names = "{\"protocolConfigs\":[],\"protocolConfigs\":[{\"name\":\"p\",\"name\":\"q\"";
  std::string elements = "{\"protocolConfigs\":[0";
  for (std::size_t i = 0; i < many; ++i) {
    names += ",\n\"name\":\"p\",\"x\":[]";
    elements += ",\n{\"version\":{}}";
  }

  EXPECT_THAT(diagnose(names + ",\"version\":{\"major\":1,\"minor\":1},\"features\":[]}]}"),
              SizeIs(2 + 2 * many));
  EXPECT_THAT(diagnose(elements + "]}"), SizeIs(1 + many));
  EXPECT_THAT(diagnose("{\"" + std::string(many * 10, '/') + "\":" + std::string(many * 10, '[')), SizeIs(1));
}

}  // namespace
