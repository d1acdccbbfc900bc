#include "RasterPages.h"

#include <cups/raster.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <vector>

#include "Files.h"

namespace velka::view {
namespace {

struct CloseRaster {
  void operator()(cups_raster_t* raster) const { cupsRasterClose(raster); }
};
using Raster = std::unique_ptr<cups_raster_t, CloseRaster>;

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) (void)close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int get() const { return number_; }

 private:
  int number_;
};

// Passes one page's rows on, or over where there is no `to`. Whether all went well.
bool passRows(cups_raster_t* from, const cups_page_header2_t& header, cups_raster_t* to) {
  std::vector<unsigned char> row(header.cupsBytesPerLine);
  const auto bytes = static_cast<unsigned>(row.size());
  for (unsigned y = 0; y < header.cupsHeight; ++y) {
    if (cupsRasterReadPixels(from, row.data(), bytes) != bytes) return true;
    if (to != nullptr && cupsRasterWritePixels(to, row.data(), bytes) != bytes) return false;
  }
  return true;
}

}  // namespace

Problem keepPages(const std::string& from, const PageRange& wanted, const std::string& to,
                  uint64_t& pages) {
  constexpr unsigned kMostBytesALine = 64U << 20U;
  const Descriptor in(open(from.c_str(), O_RDONLY | O_CLOEXEC));
  const Descriptor out(open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  if (in.get() < 0) return systemTrouble(from);
  if (out.get() < 0) return systemTrouble(to);
  const Raster reader(cupsRasterOpen(in.get(), CUPS_RASTER_READ));
  const Raster writer(cupsRasterOpen(out.get(), CUPS_RASTER_WRITE));
  if (!reader || !writer) return "the raster cannot be read";
  cups_page_header2_t header = {};
  for (pages = 0; cupsRasterReadHeader2(reader.get(), &header) != 0;) {
    const bool keep = wanted.holds(++pages);
    if (header.cupsBytesPerLine > kMostBytesALine) return "the raster's lines are too long";
    if (keep && cupsRasterWriteHeader2(writer.get(), &header) == 0) return systemTrouble(to);
    if (!passRows(reader.get(), header, keep ? writer.get() : nullptr)) return systemTrouble(to);
    if (pages == wanted.last) break;
  }
  return std::nullopt;
}

}  // namespace velka::view
