// What an administrator finds of bytes that a job has lost.
#pragma once

#include <string>

#include "faults/FaultyJob.h"

namespace velka::testing {

/// Whether one of the lines that tell of lost bytes stands in the job's log or in what it
/// wrote to standard error, or the log's lines of the options tell that others were used
/// than in the good job.
[[nodiscard]] bool tellsOfLoss(const Trial& trial, const Trial& good);

/// A record of the log that cannot be had: the one crash that is wanted.
[[nodiscard]] bool isRecordCrash(const FaultReport& report);

/// A crash inside libcups, which does not look at all of its own allocations.
[[nodiscard]] bool isCupsCrash(const FaultReport& report);

/// A failure that met a sanitizer's own call, which it does not expect.
[[nodiscard]] bool isSanitizersOwn(const Trial& trial);

}  // namespace velka::testing
