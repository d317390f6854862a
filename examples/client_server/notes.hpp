// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <charconv>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "foundation/corvane/authoring.hpp"
#include "foundation/corvane/common.hpp"

/// The protocol Notes: one end sends notes to the other. Its feature "encoding" says how a note becomes a
/// line: "plain" as it is, "hex" in hexadecimal digits, so that it may contain line breaks. Plain if not
/// agreed.
namespace notes {

namespace authoring = foundation::corvane::authoring;
namespace serialization = foundation::corvane::common::serialization;
namespace session = foundation::corvane::common::session;
using Version = std::pair<unsigned, unsigned>;
using Configuration = std::unordered_map<std::string, std::string>;

struct Note : serialization::BaseMessage {
  explicit Note(std::string text = {}) : words(std::move(text)) {}
  std::string tag() const override { return "Notes.Note"; }

  std::string words;
};

class NoteSerializer : public serialization::SerializerBase {
 public:
  NoteSerializer(const Version& wireVersion, bool hex)
      : SerializerBase("Notes.Note", typeid(Note), wireVersion, {}), hex_(hex) {}

  /// @throws std::runtime_error if a plain note would be more than a line.
  std::string write(const Note& note) const {
    if (!hex_) {
      if (note.words.find('\n') != std::string::npos) throw std::runtime_error("a plain note is one line");
      return note.words;
    }
    std::string line;
    for (const char byte : note.words) {
      constexpr std::string_view digits = "0123456789abcdef";
      const auto value = static_cast<unsigned char>(byte);
      line += {digits[value / 16], digits[value % 16]};
    }
    return line;
  }

  /// @throws std::runtime_error if the line is no note.
  Note read(std::string_view line) const {
    if (!hex_) return Note(std::string(line));
    Note note;
    for (; !line.empty(); line.remove_prefix(2)) {
      unsigned char byte = 0;
      const char* const end = line.data() + 2;
      if (line.size() < 2 || std::from_chars(line.data(), end, byte, 16).ptr != end) {
        throw std::runtime_error("a note is not in hexadecimal digits");
      }
      note.words += static_cast<char>(byte);
    }
    return note;
  }

 private:
  bool hex_;
};

/// The initializer: puts what was agreed into a connection's registry.
inline std::pair<Version, Configuration> install(const std::shared_ptr<serialization::Registry>& registry,
                                                 const Version& asked, const Configuration& configuration) {
  const auto version = authoring::chooseVersion(asked, {{1, 0}});
  if (version == session::undefinedVersion) return {version, {}};  // declined
  const auto encoding = configuration.find("encoding");
  const bool hex = encoding != configuration.end() && encoding->second == "hex";
  registry->insert(std::make_shared<NoteSerializer>(version, hex));
  return {version, configuration};
}

/// Makes the protocol known to a process.
inline void registerNotes(serialization::ProtocolRegistry& protocols) {
  protocols.registerProtocolInitializer("Notes", install,
                                        authoring::Offer().feature("encoding", {"plain", "hex"}));
}

}  // namespace notes
