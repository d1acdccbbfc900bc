// What printers' jobs wait for, told in the printers' states once a second.
#pragma once

#include <pappl/pappl.h>

namespace velka::app {

/// The library's timer: sees to it that a thread watches. Not by itself, for the library holds a
/// lock of the whole system while its timers run, and a printer is locked as long as it is being
/// connected to: a timer that waits for one keeps everybody waiting. Its seconds are also when
/// the library saves what has changed.
bool keepWatch(pappl_system_t* system, void* data);

/// The library's last word on a printer: at the end of all, ends the watch before there is
/// nothing left to be watched.
void endWatch(pappl_printer_t* printer, pappl_pr_driver_data_t* data);

}  // namespace velka::app
