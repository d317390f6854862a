// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/corvane/common/logging/FastLog.hpp"

// Not installed.
namespace foundation::corvane::common::logging {

/// One text of an event, as a column of its line.
struct EventColumn {
  const char* FastLog::Record::*text;
  std::uint32_t width;  // a minimum, in characters
};

/// How events are printed. `FastLog::print` and `dumpFastLog` write their lines with `write`. A debugger
/// finds the columns in the descriptor of processLogger.cpp.
struct EventLine {
  /// Every text of an event, in the order of the record. The line has them in this order, and `FastLog::log`
  /// stores them in this order.
  static constexpr std::array columns = {
      EventColumn{&FastLog::Record::text1, 15},
      EventColumn{&FastLog::Record::text2, 25},
      EventColumn{&FastLog::Record::text3, 10},
      EventColumn{&FastLog::Record::text4, 20},
  };
  /// Begins the line before all events, which gives their number.
  static constexpr std::string_view logSize = "Log size = ";
  static constexpr const char* null = "<null>";

  /// Writes the line of one event. `sink` has these members:
  ///   number(value, width)   a right-adjusted number
  ///   put(text)              a piece that is no field
  ///   column(text, width)    a left-adjusted text, or `null` in place of a null pointer
  ///   endLine()
  template <class Sink>
  static void write(Sink& sink, std::uint64_t number, std::uint64_t slot, const FastLog::Record& record) {
    sink.number(number, 4);
    sink.put("  (");
    sink.number(slot, 0);
    sink.put("): ");
    for (const auto& column : columns) {
      sink.column(record.*column.text, column.width);
      sink.put(" ");
    }
    sink.endLine();
  }

  /// Whether `columns` has each text of a record once, in the record's order.
  static constexpr bool hasEveryText() {
    constexpr FastLog::Record record{};
    for (std::size_t i = 0; i + 1 < columns.size(); ++i) {
      if (&(record.*columns[i].text) >= &(record.*columns[i + 1].text)) return false;
    }
    return sizeof record == columns.size() * sizeof(const char*);
  }
};

static_assert(EventLine::hasEveryText(), "a text without a column would be neither stored nor printed");

}  // namespace foundation::corvane::common::logging
