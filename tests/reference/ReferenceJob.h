// A whole job from raster pages to the byte stream, start and end commands
// included.
#pragma once

#include <cstdint>
#include <vector>

#include "DeviceRecords.h"
#include "reference/ReferenceCommands.h"
#include "reference/ReferenceDispatcher.h"

namespace velka::reference {

/// The fields of a page header that the page path uses, in the header's widths.
struct PageHeader {
  uint32_t width = 0;   ///< pixels
  uint32_t height = 0;  ///< rows
  uint32_t bitsPerPixel = 24;
  uint32_t bytesPerLine = 0;  ///< need not agree with the width
  uint32_t xResolution = 180;
  uint32_t yResolution = 180;
  bool collate = false;
  uint32_t copies = 1;
};

/// Lines of red, green, blue bytes. Lines that are missing, and all from the
/// first one that is too short, leave white rows.
struct RasterPage {
  PageHeader header;
  std::vector<Bytes> lines;
};

/// The page bitmap that the lines make: blue, green, red rows on white.
SourceBitmap readRaster(const RasterPage& page);

/// The state of a job from its first page to its end.
class ReferenceJob {
 public:
  /// `options` as the PPD left them; copies come from the first page's header.
  explicit ReferenceJob(const tagOEMCFG& options) : options_(options) {}

  /// Renders one page; the first fixes the job's resolution, width and copies.
  void page(const RasterPage& page);

  /// Ends the job; nothing is sent for a job without a page.
  void end();

  [[nodiscard]] const Bytes& stream() const { return out_; }
  [[nodiscard]] const GeneratorState& generator() const { return generator_; }
  [[nodiscard]] const DeviceState& device() const { return device_; }

 private:
  void start(const PageHeader& header);

  tagOEMCFG options_;
  DeviceState device_;
  GeneratorState generator_;
  uint32_t pageNumber_ = 0;
  Bytes out_;
};

/// The byte stream of a job with these pages.
Bytes runJob(const tagOEMCFG& options, const std::vector<RasterPage>& pages);

}  // namespace velka::reference
