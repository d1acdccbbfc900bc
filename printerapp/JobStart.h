// When jobs begin: those of the last run soon after the start, and each once.
#pragma once

#include <pappl/pappl.h>

namespace velka::app {

/// Notes the printers for which jobs wait that the last run has left; before clients come.
void noteWaitingJobs(pappl_system_t* system);

/// Begins with those, the first time that it is called.
void beginWaitingJobs(pappl_system_t* system);

/// To be asked by a thread of the library that is to print a job, before all else. True where
/// it is the first one to come with this job. A second one ends here, or gets false where
/// nothing is left to be done but what the library does at a job's end.
[[nodiscard]] bool isFirstToPrint(pappl_job_t* job);

}  // namespace velka::app
