// Whole jobs of the built filters against a program that only reads their raster.
#include <getopt.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

#include "Program.h"
#include "RasterFile.h"

namespace velka::bench {
namespace {

struct Setup {
  std::string filter;
  std::string reader;
  std::string standardPpd;
  std::string orloPpd;
  std::string peers;  ///< folder with escpx.ppd, gutenprint.ppd, epson.ppd; empty: none
  std::string cupsFilters = "/usr/lib/cups/filter";
  std::string folder = "/tmp";
  std::string only;
  int runs = 5;
};

// A raster that goes with the object.
class Raster {
 public:
  Raster(const Setup& setup, Kind kind, const Format& format, unsigned pages, bool oneBit = false)
      : path_(setup.folder + "/velka-bench-" + std::to_string(getpid()) + "-" +
              std::to_string(pages) + ".ras") {
    const bool whole = oneBit ? writeOneBitRaster(path_, kind, format, pages)
                              : writeRaster(path_, kind, format, pages);
    if (whole) return;
    std::fprintf(stderr, "velka-bench-jobs: cannot write %s\n", path_.c_str());
    unlink(path_.c_str());
    std::exit(1);
  }
  ~Raster() { unlink(path_.c_str()); }
  Raster(const Raster&) = delete;
  Raster& operator=(const Raster&) = delete;
  [[nodiscard]] const std::string& path() const noexcept { return path_; }

 private:
  std::string path_;
};

double bitmapMb(const Format& format) noexcept {
  const size_t stride = (size_t{format.width} * 24 + 31) / 32 * 4;
  return static_cast<double>(stride * format.height) / 1e6;
}

double megapixels(const Format& format) noexcept {
  return static_cast<double>(format.width) * format.height / 1e6;
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

// One copy of a page in memory that is there already, the median of several.
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

struct PerPage {
  double filterMs;
  double readerMs;
  double peakMb;  ///< of the job of one page
};

// What a page beyond the first costs: a job of several less a job of one, both run
// right after each other; the median of those differences.
PerPage perPage(const Setup& setup, const FilterRun& job, Kind kind, const Format& format,
                bool oneBit = false) {
  constexpr unsigned kPages = 6;
  const Raster one(setup, kind, format, 1, oneBit);
  const Raster several(setup, kind, format, kPages, oneBit);
  const auto runOn = [](FilterRun run, const Raster& raster) {
    run.raster = raster.path();
    const Cost cost = runOnce(run);
    if (cost.status != 0)
      std::fprintf(stderr, "warning: %s exits with %d\n", run.program.c_str(), cost.status);
    return cost;
  };
  const FilterRun reader = {setup.reader, "", "", ""};
  std::vector<double> filterMs;
  std::vector<double> readerMs;
  double peakMb = 0;
  for (int i = 0; i < setup.runs; ++i) {
    const Cost first = runOn(job, one);
    filterMs.push_back((runOn(job, several).cpuMs - first.cpuMs) / (kPages - 1));
    const double read = runOn(reader, one).cpuMs;
    readerMs.push_back((runOn(reader, several).cpuMs - read) / (kPages - 1));
    peakMb = std::max(peakMb, first.peakMb);
  }
  return {middle(std::move(filterMs)), middle(std::move(readerMs)), peakMb};
}

void pagesHeading(const char* title) {
  std::printf("\n### %s\n\n", title);
  std::printf(
      "| page | job | ms a page | reading, ms | ratio | goal | memcpy of the page, ratio "
      "| peak / bitmap |\n|---|---|---|---|---|---|---|---|\n");
}

void pagesRow(const Setup& setup, const std::string& label, const FilterRun& job, Kind kind,
              const Format& format, const char* goal) {
  const PerPage cost = perPage(setup, job, kind, format);
  std::printf("| %s | %s | %.1f | %.1f | %.1f | %s | %.1f | %.2f |\n", nameOf(kind).data(),
              label.c_str(), cost.filterMs, cost.readerMs, cost.filterMs / cost.readerMs, goal,
              cost.filterMs / memcpyMs(format), cost.peakMb / bitmapMb(format));
  std::fflush(stdout);
}

void pages(const Setup& setup) {
  constexpr const char* kGoals[] = {"3.5", "7", "8", "8", "2.5"};  // in the order of the kinds
  const FilterRun standard = {setup.filter, setup.standardPpd, "", ""};
  const FilterRun orlo = {setup.filter, setup.orloPpd, "", ""};
  pagesHeading("A page beyond the first, A4 at 360 x 360 dpi");
  for (const Kind kind : kKinds) {
    pagesRow(setup, "standard", standard, kind, a4(360, 360), kGoals[static_cast<size_t>(kind)]);
    pagesRow(setup, "Orlo", orlo, kind, a4(360, 360), "1.2 x standard");
  }
  for (const char* turn : {"1", "2", "3"}) {
    FilterRun turned = standard;
    turned.options = std::string("AnticlockwiseRotate=") + turn;
    pagesRow(setup, "standard, " + turned.options, turned, Kind::Text, a4(360, 360),
             "7 more than text");
  }
}

void resolutions(const Setup& setup) {
  pagesHeading("A page beyond the first, A4 at other resolutions");
  for (const Format& format : {a4(180, 180), a4(360, 180)})
    for (const Kind kind : kKinds)
      for (const bool orlo : {false, true}) {
        const FilterRun job = {setup.filter, orlo ? setup.orloPpd : setup.standardPpd, "", ""};
        const std::string label = std::string(orlo ? "Orlo, " : "standard, ") +
                                  std::to_string(format.xdpi) + " x " +
                                  std::to_string(format.ydpi) + " dpi";
        pagesRow(setup, label, job, kind, format, "");
      }
}

void growthRow(const Setup& setup, const std::string& label, Kind kind, const Format& format,
               unsigned count, bool orlo) {
  const Raster raster(setup, kind, format, count);
  const FilterRun job = {setup.filter, orlo ? setup.orloPpd : setup.standardPpd, "", raster.path()};
  const FilterRun reader = {setup.reader, "", "", raster.path()};
  const Pair cost = medianPair(job, reader, std::max(1, setup.runs / (count >= 100 ? 2 : 1)));
  const double dots = megapixels(format) * count;
  std::printf("| %s | %s | %.0f | %.2f | %.2f | %.1f | %.1f | %.0f | %.2f |\n", label.c_str(),
              orlo ? "Orlo" : "standard", cost.filter.cpuMs, cost.filter.cpuMs / dots,
              cost.reader.cpuMs / dots, cost.filter.cpuMs / cost.reader.cpuMs,
              cost.filter.cpuMs / (memcpyMs(format) * count), cost.filter.peakMb,
              cost.filter.peakMb / bitmapMb(format));
  std::fflush(stdout);
}

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
    const Pair cost =
        medianPair({setup.filter, orlo ? setup.orloPpd : setup.standardPpd, "", raster.path()},
                   {setup.reader, "", "log", raster.path()}, 3 * setup.runs);
    std::printf("| text, A4 360 x 360 dpi | %s | %.1f | %.1f | %.1f | 15 |\n",
                orlo ? "Orlo" : "standard", cost.filter.firstByteMs, cost.reader.wallMs,
                cost.filter.firstByteMs - cost.reader.wallMs);
  }
}

void peersRow(const char* name, const PerPage& peer, const PerPage& ours, const char* goal) {
  std::printf(" %s | %.1f | %.1f | %s |\n", name, peer.filterMs, peer.filterMs / ours.filterMs,
              goal);
  std::fflush(stdout);
}

void peers(const Setup& setup) {
  if (setup.peers.empty()) return;
  std::printf(
      "\n### Beside other filters of Debian, a page beyond the first, A4 at 360 x 360 dpi"
      "\n\n| page | filter | ms a page | times ours | goal |\n|---|---|---|---|---|\n");
  for (const Kind kind : {Kind::Text, Kind::Photo}) {
    const bool text = kind == Kind::Text;
    const Format format = a4(360, 360);
    const PerPage ours = perPage(setup, {setup.filter, setup.standardPpd, "", ""}, kind, format);
    std::printf("| %s | ours, standard | %.1f | 1 | |\n", nameOf(kind).data(), ours.filterMs);
    const auto peer = [&](const char* program, const char* ppd, bool oneBit) {
      return perPage(setup, {setup.cupsFilters + "/" + program, setup.peers + "/" + ppd, "", ""},
                     kind, format, oneBit);
    };
    std::printf("| %s |", nameOf(kind).data());
    peersRow("rastertoescpx", peer("rastertoescpx", "escpx.ppd", false), ours, text ? "3" : "15");
    std::printf("| %s |", nameOf(kind).data());
    peersRow("rastertogutenprint", peer("rastertogutenprint.5.3", "gutenprint.ppd", false), ours,
             text ? "6" : "15");
    std::printf("| %s |", nameOf(kind).data());
    peersRow("rastertoepson (one bit in, no halftoning)", peer("rastertoepson", "epson.ppd", true),
             ours, "");
  }
}

const char* fileSystemOf(const char* path) {
  struct statfs info = {};
  if (statfs(path, &info) != 0) return "unknown";
  switch (static_cast<unsigned>(info.f_type)) {
    case 0x01021994U:
      return "tmpfs";
    case 0xEF53U:
      return "ext2/3/4";
    case 0x794C7630U:
      return "overlay";
    case 0x9123683EU:
      return "btrfs";
    case 0x58465342U:
      return "xfs";
    default:
      return "another";
  }
}

bool parse(int argc, char* argv[], Setup& setup) {
  const option options[] = {{"filter", required_argument, nullptr, 'f'},
                            {"reader", required_argument, nullptr, 'r'},
                            {"standard", required_argument, nullptr, 's'},
                            {"orlo", required_argument, nullptr, 'o'},
                            {"peers", required_argument, nullptr, 'p'},
                            {"cups-filters", required_argument, nullptr, 'c'},
                            {"folder", required_argument, nullptr, 'd'},
                            {"only", required_argument, nullptr, 'n'},
                            {"runs", required_argument, nullptr, 'u'},
                            {nullptr, 0, nullptr, 0}};
  for (int c = 0; (c = getopt_long(argc, argv, "", options, nullptr)) != -1;) {
    switch (c) {
      case 'f':
        setup.filter = optarg;
        break;
      case 'r':
        setup.reader = optarg;
        break;
      case 's':
        setup.standardPpd = optarg;
        break;
      case 'o':
        setup.orloPpd = optarg;
        break;
      case 'p':
        setup.peers = optarg;
        break;
      case 'c':
        setup.cupsFilters = optarg;
        break;
      case 'd':
        setup.folder = optarg;
        break;
      case 'n':
        setup.only = optarg;
        break;
      case 'u':
        setup.runs = std::max(1, std::atoi(optarg));
        break;
      default:
        return false;
    }
  }
  return optind == argc && !setup.filter.empty() && !setup.reader.empty() &&
         !setup.standardPpd.empty() && !setup.orloPpd.empty();
}

int run(const Setup& setup) {
  std::printf(
      "/tmp, where the log lies, is on %s. CPU time is user and system time; medians of "
      "%d runs, by turns.\n",
      fileSystemOf("/tmp"), setup.runs);
  const std::pair<const char*, void (*)(const Setup&)> sections[] = {{"pages", pages},
                                                                     {"resolutions", resolutions},
                                                                     {"growth", growth},
                                                                     {"start", start},
                                                                     {"peers", peers}};
  for (const auto& [name, section] : sections)
    if (setup.only.empty() || setup.only == name) section(setup);
  return 0;
}

}  // namespace
}  // namespace velka::bench

int main(int argc, char* argv[]) {
  velka::bench::Setup setup;
  if (velka::bench::parse(argc, argv, setup)) return velka::bench::run(setup);
  std::fprintf(stderr,
               "usage: velka-bench-jobs --filter RASTOVELKA --reader VELKA-BENCH-READ "
               "--standard PPD --orlo PPD\n"
               "  [--peers FOLDER] [--cups-filters FOLDER] [--folder FOR-RASTERS] [--runs N]\n"
               "  [--only pages|resolutions|growth|start|peers]\n");
  return 2;
}
