// Whole jobs of the built filters against a program that only reads their raster.
#include <getopt.h>
#include <malloc.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Setup.h"
#include "Tables.h"

namespace velka::bench {
namespace {

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
                            {"photos", required_argument, nullptr, 'h'},
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
      case 'h':
        setup.photos = optarg;
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
                                                                     {"photographs", photographs},
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
  // A child's peak counts what its parent held when it was forked: large blocks go back to
  // the system as soon as they are freed.
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
  velka::bench::Setup setup;
  if (velka::bench::parse(argc, argv, setup)) return velka::bench::run(setup);
  std::fprintf(stderr,
               "usage: velka-bench-jobs --filter RASTOVELKA --reader VELKA-BENCH-READ "
               "--standard PPD --orlo PPD\n"
               "  [--peers FOLDER] [--photos FOLDER] [--cups-filters FOLDER]\n"
               "  [--folder FOR-RASTERS] [--runs N]\n"
               "  [--only pages|photographs|resolutions|growth|start|peers]\n");
  return 2;
}
