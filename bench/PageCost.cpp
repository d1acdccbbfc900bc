#include "PageCost.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "RasterFile.h"

namespace velka::bench {
namespace {

std::string freshPath(const Setup& setup) {
  static unsigned number = 0;
  return setup.folder + "/velka-bench-" + std::to_string(getpid()) + "-" +
         std::to_string(++number) + ".ras";
}

void mustBeWhole(bool whole, const std::string& path) {
  if (whole) return;
  std::fprintf(stderr, "velka-bench-jobs: cannot write %s\n", path.c_str());
  unlink(path.c_str());
  std::exit(1);
}

double middle(std::vector<double> values) {
  const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), at, values.end());
  return *at;
}

double processorMs() noexcept {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

Cost runOn(FilterRun run, const Raster& raster) {
  run.raster = raster.path();
  const Cost cost = runOnce(run);
  if (cost.status != 0)
    std::fprintf(stderr, "warning: %s exits with %d\n", run.program.c_str(), cost.status);
  return cost;
}

}  // namespace

Raster::Raster(const Setup& setup, Kind kind, const Format& format, unsigned pages, bool oneBit)
    : path_(freshPath(setup)) {
  mustBeWhole(oneBit ? writeOneBitRaster(path_, kind, format, pages)
                     : writeRaster(path_, kind, format, pages),
              path_);
}

Raster::Raster(const Setup& setup, const std::string& page, unsigned pages)
    : path_(freshPath(setup)) {
  mustBeWhole(repeatRaster(page, path_, pages), path_);
}

Raster::~Raster() {
  unlink(path_.c_str());
}

FilterRun standardJob(const Setup& setup) {
  return {setup.filter, setup.standardPpd, "", ""};
}

FilterRun orloJob(const Setup& setup) {
  return {setup.filter, setup.orloPpd, "", ""};
}

FilterRun readerJob(const Setup& setup) {
  return {setup.reader, "", "", ""};
}

std::vector<PageCost> pageCosts(const Setup& setup, std::span<const PageJob> jobs) {
  std::vector<std::vector<double>> times(jobs.size());
  std::vector<PageCost> costs(jobs.size(), PageCost{});
  for (int round = 0; round < setup.runs; ++round) {
    for (size_t i = 0; i < jobs.size(); ++i) {
      const Cost first = runOn(jobs[i].run, jobs[i].rasters.one);
      const Cost all = runOn(jobs[i].run, jobs[i].rasters.several);
      times[i].push_back((all.cpuMs - first.cpuMs) / (Rasters::kPages - 1));
      costs[i].peakMb = std::max(costs[i].peakMb, first.peakMb);
    }
  }
  for (size_t i = 0; i < jobs.size(); ++i) costs[i].ms = middle(std::move(times[i]));
  return costs;
}

double bitmapMb(const Format& format) noexcept {
  const size_t stride = (size_t{format.width} * 24 + 31) / 32 * 4;
  return static_cast<double>(stride * format.height) / 1e6;
}

double megapixels(const Format& format) noexcept {
  return static_cast<double>(format.width) * format.height / 1e6;
}

double memcpyMs(const Format& format) {
  const auto size = static_cast<size_t>(bitmapMb(format) * 1e6);
  std::vector<char> from(size, 1);
  std::vector<char> to(size, 2);
  std::vector<double> times;
  for (int i = 0; i < 9; ++i) {
    const double start = processorMs();
    std::memcpy(to.data(), from.data(), size);
    times.push_back(processorMs() - start);
    from[static_cast<size_t>(i)] = to[size - 1];
  }
  return middle(std::move(times));
}

}  // namespace velka::bench
