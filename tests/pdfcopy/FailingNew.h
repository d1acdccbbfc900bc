// Memory that can be had no more.
#pragma once

namespace velka::testing {

/// While it is set, operator new fails in this test program.
extern bool memoryIsGone;

}  // namespace velka::testing
