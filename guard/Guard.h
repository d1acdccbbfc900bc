// The filter in front of the printing one: the raster goes through unchanged, and the print
// scheduler is told of its pages.
#pragma once

namespace velka {

/// Runs the filter: arguments job-id, user, title, copies, options, [file], as the print
/// scheduler passes them, and the environment's PPD.
/// Returns the exit status: 1, after a message, where the first page cannot be printed (no
/// byte of a page has gone on then), where the raster is none, is damaged or ends early, and
/// where it cannot be read or passed on. A reader that is gone, and a job that is cancelled,
/// are no errors.
int runGuard(int argc, char* argv[]) noexcept;

}  // namespace velka
