#include "OrloPage.h"

#include "DeviceHandle.h"
#include "GrowingBuffer.h"
#include "OrloProcesser.h"
#include "StandardOutput.h"

namespace velka {
namespace {

_COLORCFG_ORLO colourConfig(const tagOEMCFG& options) noexcept {
  _COLORCFG_ORLO config{};
  config.OutputColorType = static_cast<uint16_t>(options.OutputColorType);
  config.ColorRangeUseFor = static_cast<uint16_t>(options.ColorRangeUseFor);
  config.minColorOffset = options.minColorOffset;
  config.maxColorOffset = options.maxColorOffset;
  config.solidColor = options.solidColor;
  config.SplitBlackRed = static_cast<uint16_t>(options.SplitBlackRed);
  config.sSpare4 = options.sSpare4;
  config.sSpare5 = options.sSpare5;
  config.sSpare6 = options.sSpare6;
  config.sSpare7 = options.sSpare7;
  config.BrightnessRed = options.BrightnessRed;
  config.ContrastRed = options.ContrastRed;
  config.LevelsRed = options.LevelsRed;
  config.sDitherRed = options.sDitherRed;
  config.BrightnessBlack = options.BrightnessBlack;
  config.ContrastBlack = options.ContrastBlack;
  config.LevelsBlack = options.LevelsBlack;
  config.sDitherBlack = options.sDitherBlack;
  return config;
}

}  // namespace

void configure(COrloProcesser& processor, const _DEVOBJ& devobj) noexcept {
  processor.EnableFaceDet(devobj.pOemDev->sFaceDetect == 1);
  processor.SetColorCFG(colourConfig(*devobj.pOemDev));
  processor.SetWhiteRows(devobj.pOemPDEV->dwWhiteRowsOut);
}

bool sendOrloPage(_DEVOBJ& devobj, PageLoss& loss) noexcept {
  loss = PageLoss::None;
  if (!isComplete(&devobj)) return false;
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  COrloProcesser processor;
  configure(processor, devobj);
  unsigned char* commands = nullptr;
  unsigned int length = 0;
  // Pages without pixels end in there.
  (void)processor.GetOrloPrintCmd(
      pdev.pBufStartOut, pdev.dwBufSizeOut, pdev.bmInfoHeaderOut.biWidth,
      pdev.bmInfoHeaderOut.biHeight, &commands, 0, &length, pdev.pszJobText,
      pdev.devModeOut.dmPrintQuality, pdev.devModeOut.dmYResolution, devobj.pOemDev->sModel);
  loss = processor.LostForMemory();
  const MallocBytes owned(commands);
  if (owned == nullptr) return false;
  writeToPrinter({owned.get(), length});
  return true;
}

}  // namespace velka
