// What the library saves of printers and jobs, one a line, before it reads it again.
#pragma once

#include <string>

namespace velka::app {

/// The same text, in which jobs that were being printed when it was saved wait to be printed:
/// the library takes such a job for one that still prints, and leaves it at that.
[[nodiscard]] std::string withJobsBegunAnew(std::string saved);

}  // namespace velka::app
