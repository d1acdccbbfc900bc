// A page in the browser on which the printer's options are tried.
#pragma once

#include "Arguments.h"

namespace velka::serve {

/// Serves the document that the command line names, or a page of our own, until a signal
/// ends it: SIGINT and SIGTERM are how it is meant to end. Tells the address on standard
/// output. Gives the exit status.
[[nodiscard]] int serve(const view::Arguments& arguments);

}  // namespace velka::serve
