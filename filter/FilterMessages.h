// Messages to the print scheduler on standard error.
#pragma once

#include <string_view>

namespace velka {

enum class MessageLevel {
  Error,
  Info,
  Debug,
  State,      ///< changes of the printer's state: "+reason" or "-reason", several by commas
  Attribute,  ///< attributes of the job: "name=value"
  Page,       ///< for the accounts: a page's number and its copies
};

/// Writes one message in one piece on a line of its own. It begins with a line end
/// too: all filters of a job share the stream, and another may have left a line open.
void tellScheduler(MessageLevel level, std::string_view text);

/// An error of memory that ran out, told without any. The text is a literal of one line.
void tellOutOfMemory(std::string_view text) noexcept;

/// An error with the reason that errno holds.
void tellSystemError(std::string_view text);

}  // namespace velka
