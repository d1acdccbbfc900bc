// The server: what it listens to, where it keeps things, who may do what.
#pragma once

#include <pappl/pappl.h>

namespace velka::app {

/// Makes the system from the options of the sub-command `server`; null, with a line on
/// standard error, where it cannot be. The main loop's callback.
pappl_system_t* makeSystem(int count, cups_option_t* options, void* context);

}  // namespace velka::app
