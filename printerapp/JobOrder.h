// Jobs that wait for a printer are printed in the order in which they came. The library begins
// with the newest one, so all but the oldest are held back for the moment in which it looks.
#pragma once

#include <pappl/pappl.h>

namespace velka::app {

/// To be called before the library looks for the next job.
void holdBackAllButOldest(pappl_printer_t* printer);

/// Lets those wait again as before; to be called when a job has begun.
void letAllWait(pappl_printer_t* printer);

/// The same for printers whose next job has not begun for some rounds of the watch.
void letForgottenWait(pappl_system_t* system);

/// Notes what the last run has held back when it was killed; before clients come.
void noteHeldBack(pappl_printer_t* printer);

}  // namespace velka::app
