// The rasters of a document, made once for each resolution and size of paper and kept.
#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

#include "Chain.h"
#include "ColourCount.h"
#include "PrinterOptions.h"
#include "RasterPixels.h"

namespace velka::serve {

/// One page's raster in a private folder that goes with this object.
class KeptRaster {
 public:
  KeptRaster(view::ChainJob job, const view::SignalsHeld& held)
      : job_(std::move(job)), chain_(job_, held) {}

  /// Rasterises the page and reads it.
  [[nodiscard]] view::Problem make(const view::Chain::Unwanted& unwanted);

  [[nodiscard]] view::Chain& chain() { return chain_; }
  /// Of a page that cannot be shown: empty, and why.
  [[nodiscard]] const RasterPixels& pixels() const { return pixels_; }
  [[nodiscard]] const view::Problem& unshown() const { return unshown_; }
  /// Counted when they are first asked for, from whatever thread.
  [[nodiscard]] const std::vector<ColourGroup>& colours();

 private:
  view::ChainJob job_;
  view::Chain chain_;
  RasterPixels pixels_;
  view::Problem unshown_;
  std::once_flag counted_;
  std::vector<ColourGroup> colours_;
};

/// What all jobs of a document have in common; it must outlive the rasters.
struct Document {
  std::vector<uint8_t> bytes;
  std::string name;
  std::string ppd;
};

class Rasters {
 public:
  Rasters(const Document& document, const PrinterOptions& options, const view::SignalsHeld& held)
      : document_(document), options_(options), held_(held) {}

  using Found = std::variant<std::shared_ptr<KeptRaster>, Refusal>;
  /// That of a page, from 1, with these settings; one caller at a time.
  [[nodiscard]] Found get(const Settings& settings, uint64_t page,
                          const view::Chain::Unwanted& unwanted);

 private:
  static constexpr size_t kMost = 3;

  const Document& document_;
  const PrinterOptions& options_;
  const view::SignalsHeld& held_;
  std::list<std::pair<std::string, std::shared_ptr<KeptRaster>>> kept_;  // the newest first
};

}  // namespace velka::serve
