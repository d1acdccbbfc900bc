// Processes as the kernel tells of them.
#pragma once

#include <sys/types.h>

#include <string>

#include "support/Eventually.h"
#include "support/TestPdf.h"

namespace velka::testing {

/// The letter of a process's state; '-' where there is no such process.
inline char stateOf(pid_t process) {
  const std::string status = textOf("/proc/" + std::to_string(process) + "/stat");
  const size_t name = status.rfind(')');
  return name == std::string::npos ? '-' : status.at(name + 2);
}

/// Whether a process ends; one that nobody waited for yet has ended, too.
inline bool ends(pid_t process) {
  return eventually([process] {
    const char state = stateOf(process);
    return state == '-' || state == 'Z' || state == 'X';
  });
}

}  // namespace velka::testing
