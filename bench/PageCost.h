// What a page costs a filter: rasters to run it on, and runs told from each other.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "Program.h"
#include "Setup.h"
#include "TestPage.h"

namespace velka::bench {

/// A raster file that goes with the object. Ends the program where it cannot be written.
class Raster {
 public:
  /// Of drawn pages; `oneBit` as filters get it that do no halftoning.
  Raster(const Setup& setup, Kind kind, const Format& format, unsigned pages, bool oneBit = false);
  /// Of the first page of another raster.
  Raster(const Setup& setup, const std::string& page, unsigned pages);
  ~Raster();
  Raster(const Raster&) = delete;
  Raster& operator=(const Raster&) = delete;
  [[nodiscard]] const std::string& path() const noexcept { return path_; }

 private:
  std::string path_;
};

/// The same pages once, and several times.
struct Rasters {
  static constexpr unsigned kPages = 6;
  Raster one;
  Raster several;

  Rasters(const Setup& setup, Kind kind, const Format& format, bool oneBit = false)
      : one(setup, kind, format, 1, oneBit), several(setup, kind, format, kPages, oneBit) {}
  Rasters(const Setup& setup, const std::string& page)
      : one(setup, page, 1), several(setup, page, kPages) {}
};

[[nodiscard]] FilterRun standardJob(const Setup& setup);
[[nodiscard]] FilterRun orloJob(const Setup& setup);
[[nodiscard]] FilterRun readerJob(const Setup& setup);

struct PageCost {
  double ms;      ///< of processor time, a page beyond the first
  double peakMb;  ///< of the job of one page
};

/// A job and the pages it gets.
struct PageJob {
  FilterRun run;
  const Rasters& rasters;
};

/// What a page beyond the first costs each of the jobs: several pages less one, both run
/// right after each other; the median of those differences over `setup.runs` rounds, in
/// each of which all jobs have their turn.
[[nodiscard]] std::vector<PageCost> pageCosts(const Setup& setup, std::span<const PageJob> jobs);

[[nodiscard]] double bitmapMb(const Format& format) noexcept;
[[nodiscard]] double megapixels(const Format& format) noexcept;

/// One copy of a page in memory that is there already, the median of several.
[[nodiscard]] double memcpyMs(const Format& format);

}  // namespace velka::bench
