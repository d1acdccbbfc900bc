// Running a filter as the scheduler does, and what it cost.
#pragma once

#include <string>

namespace velka::bench {

struct FilterRun {
  std::string program;
  std::string ppd;
  std::string options;
  std::string raster;
};

struct Cost {
  double cpuMs = 0;        ///< user and system time
  double systemMs = 0;     ///< of that, system time
  double wallMs = 0;       ///< from start to end
  double firstByteMs = 0;  ///< from start to the first byte on standard output
  double peakMb = 0;       ///< largest resident size
  double outputMb = 0;
  int status = -1;
};

/// Runs it once, what it writes read and thrown away.
[[nodiscard]] Cost runOnce(const FilterRun& run);

/// The costs with the median processor time, and the smallest wall and first-byte
/// times, over `runs` of both programs run by turns, so that what else the machine does
/// meets both alike.
struct Pair {
  Cost filter;
  Cost reader;
};
[[nodiscard]] Pair medianPair(const FilterRun& filter, const FilterRun& reader, int runs);

}  // namespace velka::bench
