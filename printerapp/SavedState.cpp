#include "SavedState.h"

#include <cstddef>
#include <string_view>

namespace velka::app {
namespace {

// As IPP counts the states of jobs.
constexpr char kPending = '3';
constexpr std::string_view kProcessing = "5";
constexpr std::string_view kJob = "Job ";

// The end of a value in quotes, in which a backslash stands in front of quotes and itself.
size_t endOfValue(std::string_view text, size_t at) {
  while (at < text.size() && text[at] != '"') at += text[at] == '\\' ? 2 : 1;
  return at;
}

// Where the value of a name begins in a line of NAME="VALUE"; npos where it is not there.
size_t valueOf(std::string_view line, std::string_view wanted, size_t& end) {
  size_t at = kJob.size();
  while (at < line.size()) {
    const size_t quote = line.find("=\"", at);
    if (quote == std::string_view::npos) break;
    const std::string_view name = line.substr(at, quote - at);
    end = endOfValue(line, quote + 2);
    if (name == wanted && end < line.size()) return quote + 2;
    at = end + 2;
  }
  return std::string_view::npos;
}

}  // namespace

std::string withJobsBegunAnew(std::string saved) {
  for (size_t from = 0; from < saved.size();) {
    const size_t next = saved.find('\n', from);
    const std::string_view line = std::string_view(saved).substr(from, next - from);
    size_t end = 0;
    const size_t state =
        line.starts_with(kJob) ? valueOf(line, "state", end) : std::string_view::npos;
    if (state != std::string_view::npos && line.substr(state, end - state) == kProcessing)
      saved[from + state] = kPending;
    from = next == std::string::npos ? saved.size() : next + 1;
  }
  return saved;
}

}  // namespace velka::app
