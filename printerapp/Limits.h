// What one job may ask for. The administrator sets both when the server is started.
#pragma once

#include <cstdint>

namespace velka::app {

struct Limits {
  /// Pages of a job, each copy that the printer does not make by itself counted.
  int pages = 2000;
  /// Dots of a page: the largest paper at the finest resolution, and a little more.
  uint64_t dots = 100'000'000;
};

/// Those in use; set before the server runs, read by its jobs.
inline Limits limits;

}  // namespace velka::app
