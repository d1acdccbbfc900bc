// Both ends of a job: what it opens, how it is told to end, what it closes. The
// public operations are declared in rastovelka.h.
#pragma once

namespace velka {

/// SIGTERM sets `Canceled` and lets a system call it meets go on; SIGPIPE is
/// ignored, so that writes report a broken pipe.
void installSignals() noexcept;

}  // namespace velka
