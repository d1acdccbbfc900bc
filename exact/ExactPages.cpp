#include "ExactPages.h"

#include <algorithm>
#include <optional>

#include "CommandBuffer.h"
#include "ESCPSML.h"
#include "ExactSweep.h"
#include "OrloPage.h"
#include "OrloProcesser.h"
#include "StandardOutput.h"

namespace velka {
namespace {

constexpr int kBackFeed = 2;
constexpr int kBothColours = 2;
constexpr int kFirstScreen = 3;
constexpr int kLastScreen = 6;
constexpr int kThreshold = 1;

struct Planes {
  DotPlane black;
  DotPlane red;
};

// Appends a page's sweeps: one for both inks, or one for each where the page is split.
bool appendSweeps(const ExactHead& head, const Planes& planes, int64_t topRow, bool split,
                  const CommandSink& sink) noexcept {
  ExactSweep sweep(head, planes.black, planes.red, topRow, sink);
  if (!sweep.prepare()) return false;
  if (!split) return sweep.print({true, true});
  return sweep.print({true, false}) && sweep.print({false, true});
}

// Error diffusion that makes more of an error than there was puts dots on white paper, and
// so does a threshold that white does not reach.
bool leavesWhite(int mode, const tagOEMCFG& options) noexcept {
  constexpr int kWholeDot = 10;
  if (mode == kThreshold || (mode >= kFirstScreen && mode <= kLastScreen)) return true;
  return options.sDotErrorFactor >= 0 && options.sDotErrorFactor <= kWholeDot &&
         options.sDiffusionThreshold < 255;
}

DotPlane standardPlane(const CESCPSML& generator, const unsigned char* bytes, bool inked) noexcept {
  const int rows = inked ? generator.PlaneRows() : 0;
  return {bytes, generator.m_nPlaneStride, generator.m_nPageHeight, rows};
}

// Without a head for it, the form is fed and nothing printed.
bool appendStandardPage(const CESCPSML& generator, const std::optional<ExactHead>& head,
                        const _DEVOBJ& devobj, CommandBuffer& page) noexcept {
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  const tagOEMCFG& options = *devobj.pOemDev;
  const Planes planes = {
      standardPlane(generator, generator.m_pBlackBuf, generator.m_nBlackFlag != 0),
      standardPlane(generator, generator.m_pRedBuf, generator.m_nRedFlag != 0)};
  const bool split = options.SplitBlackRed == 1;
  if (head && !appendSweeps(*head, planes, pdev.lInitialYOffset, split, page.sink())) return false;
  const auto eject = ejectMode(options, pdev.dwCurPageNum);
  return !eject || page.sink().append(*eject);
}

// An ink that the options leave out is not halftoned.
DotPlane orloPlane(const OrloPlane& plane, const OrloInks& page) noexcept {
  if (plane.isEmpty() || !plane.hasData) return {nullptr, page.width, 0, 0};
  const int64_t rows = std::clamp<int64_t>(page.height, 0, plane.size / page.width);
  return {plane.data, page.width, rows, std::min(rows, plane.filledRows(page.width))};
}

}  // namespace

bool sendExactStandardPage(_DEVOBJ& devobj, PageLoss& loss) noexcept {
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  const tagOEMCFG& options = *devobj.pOemDev;
  CESCPSML& generator = *pdev.pEscpSml;
  const int16_t xdpi = pdev.devModeOut.dmPrintQuality;
  const int16_t ydpi = pdev.devModeOut.dmYResolution;
  loss = PageLoss::None;
  if (!standardBitImageMode(options.sHeadPins, ydpi, xdpi)) return false;
  const auto head = standardHead(options.sHeadPins, xdpi, ydpi);
  const bool white =
      leavesWhite(options.sDitherBlack, options) && leavesWhite(options.sDitherRed, options);
  const bool separated = generator.MakePlanes(&devobj, !white);
  loss = generator.LostForMemory();
  CommandBuffer page;
  const bool encoded = separated && appendStandardPage(generator, head, devobj, page);
  generator.ReleasePlanes();
  if (separated && !encoded) loss = PageLoss::Commands;
  if (!encoded) return false;
  const bool sent = generator.SendPageCommands(&devobj, page);
  loss = generator.LostForMemory();
  return sent;
}

bool sendExactOrloPage(_DEVOBJ& devobj, PageLoss& loss) noexcept {
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  const _DEVMODE& mode = pdev.devModeOut;
  const int feed = devobj.pOemDev->sModel;
  const bool back = feed == kBackFeed;
  COrloProcesser processor;
  configure(processor, devobj);
  processor.SetLastRowCounts(true);
  const auto head =
      orloHead(back ? kBackFeedHead : kFrontFeedHead, mode.dmPrintQuality, mode.dmYResolution);
  const int construction = processor.GetPrintConstruction(feed);
  loss = PageLoss::None;
  if (!head || construction == 0) return false;
  const bool separated =
      processor.MakePlanes(pdev.pBufStartOut, pdev.dwBufSizeOut, pdev.bmInfoHeaderOut.biWidth,
                           pdev.bmInfoHeaderOut.biHeight, mode.dmYResolution, feed);
  loss = processor.LostForMemory();
  const OrloInks inks = processor.Inks();
  if (!separated || inks.isEmpty()) return false;
  CommandBuffer page;
  loss = PageLoss::Commands;
  if (back && !page.sink().append(selectColour(kBothColours))) return false;
  const Planes planes = {orloPlane(inks.black, inks), orloPlane(inks.red, inks)};
  if (!appendSweeps(*head, planes, 0, construction == 2, page.sink())) return false;
  loss = PageLoss::None;
  writeToPrinter(page.commands());
  return true;
}

}  // namespace velka
