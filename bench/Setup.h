// What the measurements of whole jobs are told on the command line.
#pragma once

#include <string>

namespace velka::bench {

struct Setup {
  std::string filter;
  std::string reader;
  std::string standardPpd;
  std::string orloPpd;
  std::string peers;   ///< folder with escpx.ppd, gutenprint.ppd, epson.ppd; empty: none
  std::string photos;  ///< folder with rasters of one page, NAME.ras; empty: none
  std::string cupsFilters = "/usr/lib/cups/filter";
  std::string folder = "/tmp";
  std::string only;
  int runs = 5;
};

}  // namespace velka::bench
