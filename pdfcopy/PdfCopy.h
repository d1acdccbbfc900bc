// The filter that stands in front of the rasteriser: what comes in goes out
// unchanged, and a job whose pages come from the PDF finds its copy.
#pragma once

namespace velka {

/// Runs the filter: arguments job-id, user, title, copies, options, [file], as the
/// print scheduler passes them, and the environment's PPD. Where the marked options
/// take the pages from the PDF, the job's copy is complete under its name before
/// the first byte goes out; of a picture or PostScript a PDF is
/// made for that.
/// Returns the exit status: 1, after a message, when the copy cannot be made or not
/// printed from (QueueCheck.h), because the pages would come out white, or when not all
/// bytes could be passed on; no copy is left then, nor after SIGTERM.
int runPdfCopy(int argc, char* argv[]) noexcept;

}  // namespace velka
