// PDF documents: drawn page by page in a process beside us, printed as they come.
#pragma once

#include <pappl/pappl.h>

namespace velka::app {

/// Has the system print PDFs.
void addPdfFilter(pappl_system_t* system);

}  // namespace velka::app
