// Tables of whole jobs, the first page included, and of other filters' pages.
#include <algorithm>
#include <cstdio>

#include "PageCost.h"
#include "Tables.h"

namespace velka::bench {
namespace {

FilterRun on(FilterRun run, const Raster& raster) {
  run.raster = raster.path();
  return run;
}

void growthRow(const Setup& setup, const std::string& label, Kind kind, const Format& format,
               unsigned count, bool orlo) {
  const Raster raster(setup, kind, format, count);
  const FilterRun job = on(orlo ? orloJob(setup) : standardJob(setup), raster);
  const Pair cost = medianPair(job, on(readerJob(setup), raster),
                               std::max(1, setup.runs / (count >= 100 ? 2 : 1)));
  const double dots = megapixels(format) * count;
  std::printf("| %s | %s | %.0f | %.2f | %.2f | %.1f | %.1f | %.0f | %.2f |\n", label.c_str(),
              orlo ? "Orlo" : "standard", cost.filter.cpuMs, cost.filter.cpuMs / dots,
              cost.reader.cpuMs / dots, cost.filter.cpuMs / cost.reader.cpuMs,
              cost.filter.cpuMs / (memcpyMs(format) * count), cost.filter.peakMb,
              cost.filter.peakMb / bitmapMb(format));
  std::fflush(stdout);
}

void peersRow(const char* name, const PageCost& peer, const PageCost& ours, const char* goal) {
  std::printf(" %s | %.1f | %.1f | %s |\n", name, peer.ms, peer.ms / ours.ms, goal);
  std::fflush(stdout);
}

}  // namespace

void growth(const Setup& setup) {
  std::printf(
      "\n### Many pages and long pages, whole jobs\n\n| job | model | CPU ms | ms a megapixel "
      "| reading, ms a megapixel | ratio | memcpy of the pages, ratio | peak MB | peak / "
      "bitmap |\n|---|---|---|---|---|---|---|---|---|\n");
  for (const bool orlo : {false, true}) {
    for (const unsigned count : {1U, 10U, 100U})
      growthRow(setup, "text, A4 180 x 180 dpi, pages: " + std::to_string(count), Kind::Text,
                a4(180, 180), count, orlo);
    for (const unsigned count : {1U, 10U})
      growthRow(setup, "text, A4 360 x 360 dpi, pages: " + std::to_string(count), Kind::Text,
                a4(360, 360), count, orlo);
    growthRow(setup, "receipt, 80 mm roll 360 x 360 dpi, 0.3 m", Kind::Receipt, roll(300), 1, orlo);
    for (const Kind kind : kKinds)
      growthRow(setup, std::string(nameOf(kind)) + ", 80 mm roll 360 x 360 dpi, 5 m", kind,
                roll(5000), 1, orlo);
  }
}

void start(const Setup& setup) {
  std::printf(
      "\n### From start to the first byte, one page\n\n| page | model | first byte, ms | "
      "log and reading the page, ms | beyond those | goal |\n|---|---|---|---|---|---|\n");
  for (const bool orlo : {false, true}) {
    const Raster raster(setup, Kind::Text, a4(360, 360), 1);
    FilterRun reader = on(readerJob(setup), raster);
    reader.options = "log";
    const Pair cost =
        medianPair(on(orlo ? orloJob(setup) : standardJob(setup), raster), reader, 3 * setup.runs);
    std::printf("| text, A4 360 x 360 dpi | %s | %.1f | %.1f | %.1f | 15 |\n",
                orlo ? "Orlo" : "standard", cost.filter.firstByteMs, cost.reader.wallMs,
                cost.filter.firstByteMs - cost.reader.wallMs);
  }
}

void peers(const Setup& setup) {
  if (setup.peers.empty()) return;
  std::printf(
      "\n### Beside other filters of Debian, a page beyond the first, A4 at 360 x 360 dpi"
      "\n\n| page | filter | ms a page | times ours | goal |\n|---|---|---|---|---|\n");
  const auto peer = [&](const char* program, const char* ppd) -> FilterRun {
    return {setup.cupsFilters + "/" + program, setup.peers + "/" + ppd, "", ""};
  };
  for (const Kind kind : {Kind::Text, Kind::Photo}) {
    const bool text = kind == Kind::Text;
    const Rasters rasters(setup, kind, a4(360, 360));
    const Rasters oneBit(setup, kind, a4(360, 360), true);
    const PageJob jobs[] = {{standardJob(setup), rasters},
                            {peer("rastertoescpx", "escpx.ppd"), rasters},
                            {peer("rastertogutenprint.5.3", "gutenprint.ppd"), rasters},
                            {peer("rastertoepson", "epson.ppd"), oneBit}};
    const auto costs = pageCosts(setup, jobs);
    std::printf("| %s | ours, standard | %.1f | 1 | |\n", nameOf(kind).data(), costs[0].ms);
    std::printf("| %s |", nameOf(kind).data());
    peersRow("rastertoescpx", costs[1], costs[0], text ? "3" : "15");
    std::printf("| %s |", nameOf(kind).data());
    peersRow("rastertogutenprint", costs[2], costs[0], text ? "6" : "15");
    std::printf("| %s |", nameOf(kind).data());
    peersRow("rastertoepson (one bit in, no halftoning)", costs[3], costs[0], "");
  }
}

}  // namespace velka::bench
