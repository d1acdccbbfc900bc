#include "Rasters.h"

#include <algorithm>

namespace velka::serve {

view::Problem KeptRaster::make(const view::Chain::Unwanted& unwanted) {
  if (auto problem = chain_.makeRaster(unwanted)) return problem;
  const uint64_t page = chain_.pagesChosen() || !job_.pages ? 1 : job_.pages->first;
  unshown_ = readRaster(chain_.raster(), page, pixels_);
  return std::nullopt;
}

const std::vector<ColourGroup>& KeptRaster::colours() {
  std::call_once(counted_, [this] {
    if (!unshown_) colours_ = groupColours(countColours(pixels_));
  });
  return colours_;
}

Rasters::Found Rasters::get(const Settings& settings, uint64_t page,
                            const view::Chain::Unwanted& unwanted) {
  const Settings some = options_.ofRaster(settings);
  const std::string text = options_.jobText(some);
  const std::string key = std::to_string(page) + " " + text;
  const auto found = std::ranges::find(kept_, key, [](const auto& entry) { return entry.first; });
  if (found != kept_.end()) {
    kept_.splice(kept_.begin(), kept_, found);
    return kept_.front().second;
  }
  const bool copy = valueOf(options_, settings, "PdfPreprocess") == "yes";
  auto raster =
      std::make_shared<KeptRaster>(view::ChainJob{document_.bytes, document_.name, document_.ppd,
                                                  text, copy, view::PageRange{page, page}, true},
                                   held_);
  if (auto problem = raster->make(unwanted)) return Refusal{*problem};
  kept_.emplace_front(key, raster);
  if (kept_.size() > kMost) kept_.pop_back();
  return raster;
}

}  // namespace velka::serve
