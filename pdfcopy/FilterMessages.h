// Messages to the print scheduler on standard error.
#pragma once

#include <string_view>

namespace velka {

enum class MessageLevel { Error, Info, Debug };

/// Writes one message in one piece on a line of its own. It begins with a line end
/// too: all filters of a job share the stream, and another may have left a line open.
void tellScheduler(MessageLevel level, std::string_view text);

/// An error whose text needs no memory.
void tellOutOfMemory() noexcept;

/// An error with the reason that errno holds.
void tellSystemError(std::string_view text);

}  // namespace velka
