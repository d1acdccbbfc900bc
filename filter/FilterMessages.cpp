#include "FilterMessages.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>

#include "StandardOutput.h"

namespace velka {
namespace {

std::string_view prefixOf(MessageLevel level) noexcept {
  switch (level) {
    case MessageLevel::Error:
      return "ERROR: ";
    case MessageLevel::Info:
      return "INFO: ";
    case MessageLevel::State:
      return "STATE: ";
    case MessageLevel::Attribute:
      return "ATTR: ";
    case MessageLevel::Page:
      return "PAGE: ";
    case MessageLevel::Debug:
      break;
  }
  return "DEBUG: ";
}

void writeError(std::string_view line) noexcept {
  writeAll(STDERR_FILENO, {reinterpret_cast<const uint8_t*>(line.data()), line.size()});
}

}  // namespace

void tellScheduler(MessageLevel level, std::string_view text) {
  std::string line = "\n";
  line.append(prefixOf(level)).append(text);
  // A file's name may hold anything; a line end in it would begin a message.
  std::replace_if(
      line.begin() + 1, line.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
  line += '\n';
  writeError(line);
}

void tellOutOfMemory(std::string_view text) noexcept {
  writeError("\nERROR: ");
  writeError(text);
  writeError("\n");
}

void tellSystemError(std::string_view text) {
  const std::string reason = std::generic_category().message(errno);
  tellScheduler(MessageLevel::Error, std::string(text) + ": " + reason);
}

}  // namespace velka
