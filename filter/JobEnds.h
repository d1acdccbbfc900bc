// Both ends of a job: what it opens, how it is told to end, what it closes. The
// public operations are declared in rastovelka.h.
#pragma once

namespace velka {

/// What comes before all else: memory that stays, standard descriptors that are open, an
/// unbuffered standard error. Until installSignals() SIGTERM ends the process, as it would
/// without this, and takes the job's PDF copy along: nobody else would. That does not
/// happen for a job id that may not be part of a path.
void prepareProcess(int argc, char* argv[]) noexcept;

/// SIGTERM sets `Canceled` and lets a system call it meets go on; SIGPIPE is
/// ignored, so that writes report a broken pipe; SIGCHLD is not, whatever the caller did.
void installSignals() noexcept;

}  // namespace velka
