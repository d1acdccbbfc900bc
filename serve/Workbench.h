// The document on the bench: its pages printed with whatever settings are tried.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <variant>

#include "PaperView.h"
#include "Rasters.h"
#include "Stream.h"
#include "Turns.h"

namespace velka::serve {

/// A page as a tab wants it; of one tab the highest turn counts.
struct Wish {
  Settings settings;
  uint64_t page = 1;
  std::string tab;
  uint64_t turn = 0;
};

struct PrintedPage {
  view::Stream stream;
  decode::Page page;  ///< its blocks lie in the stream
  view::PaperView view;
  bool blank = false;  ///< nothing was sent for it
  std::string flaws;   ///< what of it will not be on paper as it was meant

  [[nodiscard]] decode::Paper paper() const {
    return decode::paperOf(page, view.model, view.grid, view.width);
  }
};

/// Why there is no page.
struct Failure {
  bool outdated = false;  ///< nobody wants it any more
  std::string why;
};

/// May be used from several threads.
class Workbench {
 public:
  Workbench(const Document& document, const PrinterOptions& options, Turns& turns,
            const view::SignalsHeld& held)
      : document_(document), options_(options), turns_(turns), rasters_(document, options, held) {}

  using Page = std::shared_ptr<const PrintedPage>;
  using Raster = std::shared_ptr<KeptRaster>;

  /// Runs our filter on the kept raster, unless the same page was printed a moment ago. A
  /// newer wish of the same tab ends the run.
  [[nodiscard]] std::variant<Page, Failure> print(const Wish& wish);

  /// What the filter gets.
  [[nodiscard]] std::variant<Raster, Failure> raster(const Wish& wish);

 private:
  static constexpr size_t kMostPages = 8;

  [[nodiscard]] std::variant<Raster, Failure> rasterOf(const Wish& wish);
  [[nodiscard]] std::variant<Page, Failure> run(const Wish& wish, const std::string& text);

  const Document& document_;
  const PrinterOptions& options_;
  Turns& turns_;
  std::mutex working_;  // one program of the chain at a time
  Rasters rasters_;
  std::list<std::pair<std::string, Page>> printed_;  // the newest first
};

}  // namespace velka::serve
