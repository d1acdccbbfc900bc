// Tables of what a page beyond the first costs.
#include <cstdio>
#include <filesystem>
#include <set>

#include "PageCost.h"
#include "Tables.h"

namespace velka::bench {
namespace {

void pagesHeading(const char* title) {
  std::printf("\n### %s\n\n", title);
  std::printf(
      "| page | job | ms a page | reading, ms | ratio | goal | memcpy of the page, ratio "
      "| peak / bitmap |\n|---|---|---|---|---|---|---|---|\n");
}

void pagesRow(const Setup& setup, const std::string& label, const FilterRun& job, Kind kind,
              const Format& format, const char* goal) {
  const Rasters rasters(setup, kind, format);
  const PageJob jobs[] = {{job, rasters}, {readerJob(setup), rasters}};
  const auto costs = pageCosts(setup, jobs);
  std::printf("| %s | %s | %.1f | %.1f | %.1f | %s | %.1f | %.2f |\n", nameOf(kind).data(),
              label.c_str(), costs[0].ms, costs[1].ms, costs[0].ms / costs[1].ms, goal,
              costs[0].ms / memcpyMs(format), costs[0].peakMb / bitmapMb(format));
  std::fflush(stdout);
}

void photographsRow(const Setup& setup, const std::string& name, const Rasters& photograph,
                    const Rasters& formula) {
  const PageJob jobs[] = {{standardJob(setup), photograph},
                          {standardJob(setup), formula},
                          {readerJob(setup), photograph},
                          {orloJob(setup), photograph}};
  const auto costs = pageCosts(setup, jobs);
  std::printf("| %s | %.1f | %.1f | %.1f | 8 | %.1f | %.2f | 1.15 | %.1f | %.2f | 1.2 |\n",
              name.c_str(), costs[0].ms, costs[2].ms, costs[0].ms / costs[2].ms, costs[1].ms,
              costs[0].ms / costs[1].ms, costs[3].ms, costs[3].ms / costs[0].ms);
  std::fflush(stdout);
}

std::set<std::filesystem::path> rastersIn(const std::string& folder) {
  std::set<std::filesystem::path> rasters;
  if (folder.empty()) return rasters;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".ras") rasters.insert(entry.path());
  return rasters;
}

}  // namespace

void pages(const Setup& setup) {
  constexpr const char* kGoals[] = {"3.5", "7", "8", "8", "2.5"};  // in the order of the kinds
  pagesHeading("A page beyond the first, A4 at 360 x 360 dpi");
  for (const Kind kind : kKinds) {
    const char* goal = kGoals[static_cast<size_t>(kind)];
    pagesRow(setup, "standard", standardJob(setup), kind, a4(360, 360), goal);
    pagesRow(setup, "Orlo", orloJob(setup), kind, a4(360, 360), "1.2 x standard");
  }
  for (const char* turn : {"1", "2", "3"}) {
    FilterRun turned = standardJob(setup);
    turned.options = std::string("AnticlockwiseRotate=") + turn;
    pagesRow(setup, "standard, " + turned.options, turned, Kind::Text, a4(360, 360),
             "7 more than text");
  }
}

void photographs(const Setup& setup) {
  std::printf(
      "\n### Photographs, a page beyond the first, A4 at 360 x 360 dpi\n\n"
      "| photograph | standard, ms | reading, ms | ratio | goal | the formula's page, ms "
      "| times that | goal | Orlo, ms | times standard | goal |\n"
      "|---|---|---|---|---|---|---|---|---|---|---|\n");
  const Rasters formula(setup, Kind::Photo, a4(360, 360));
  photographsRow(setup, "our own making", Rasters(setup, Kind::Camera, a4(360, 360)), formula);
  for (const auto& raster : rastersIn(setup.photos))
    photographsRow(setup, raster.stem(), Rasters(setup, raster), formula);
}

void resolutions(const Setup& setup) {
  pagesHeading("A page beyond the first, A4 at other resolutions");
  for (const Format& format : {a4(180, 180), a4(360, 180)})
    for (const Kind kind : kKinds)
      for (const bool orlo : {false, true}) {
        const std::string label = std::string(orlo ? "Orlo, " : "standard, ") +
                                  std::to_string(format.xdpi) + " x " +
                                  std::to_string(format.ydpi) + " dpi";
        pagesRow(setup, label, orlo ? orloJob(setup) : standardJob(setup), kind, format, "");
      }
}

}  // namespace velka::bench
