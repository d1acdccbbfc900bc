// The job's device records: options, device mode, device state and the handle
// that leads to all three. The front end fills them once per job; every page
// operation receives them through `_DEVOBJ`. All are zero at start.
#pragma once

#include <cstddef>
#include <cstdint>

#include "BitmapRecords.h"
#include "DataTree.h"

class CESCPSML;

/// The job's printer options, packed without gaps: a default record is copied
/// over it whole, then the PPD's marked choices overwrite single fields.
#pragma pack(push, 1)
struct tagOEMCFG {
  int32_t sHrzDir;     ///< horizontal offset: 0 right, 1 left, else none
  int32_t sVtcDir;     ///< vertical offset: 0 down, 1 up, else none
  int32_t sHrzOffset;  ///< tenths of a millimetre
  int32_t sVtcOffset;  ///< tenths of a millimetre
  int32_t sRotation;   ///< anticlockwise quarter turns, 0-3
  int16_t sHeadPins;   ///< print-head height in dots: 8, 24, 48 or 72
  int16_t sSpare1;
  int16_t OutputColorType;    ///< 1 black only, 2 red only, 3 both
  int16_t ColorRangeUseFor;   ///< with both inks: the range selects 1 black, 2 red
  tagRGBQUAD minColorOffset;  ///< lower corner of the colour range
  tagRGBQUAD maxColorOffset;  ///< upper corner of the colour range
  tagRGBQUAD solidColor;      ///< printed at full ink without adjustment
  int16_t sConfigured;        ///< 1 once the record has been initialised
  int16_t sCopies;
  int16_t sDotErrorFactor;      ///< error-diffusion weight of a dot, in tenths
  int16_t sDiffusionThreshold;  ///< error-diffusion threshold
  int16_t sSpare2;
  int16_t sEjectMode;         ///< 0-4
  int16_t sEjectFirstCount;   ///< pages
  int16_t sEjectSecondCount;  ///< pages
  int16_t sSpare3;
  int16_t SplitBlackRed;  ///< 1: each page in two sweeps, black then red
  int16_t sSpare4;
  int16_t sSpare5;
  int16_t sSpare6;
  int16_t sSpare7;
  int16_t BrightnessRed;  ///< -200..200
  int16_t ContrastRed;    ///< -200..200
  int16_t LevelsRed;      ///< midtone in hundredths
  int16_t sDitherRed;     ///< halftone mode
  int16_t BrightnessBlack;
  int16_t ContrastBlack;
  int16_t LevelsBlack;
  int16_t sDitherBlack;
  int16_t sSpare8;
  int16_t sSpare9;
  int16_t sFaceDetect;  ///< 1: on (Orlo model)
  int16_t sSpare10;
  int16_t sModel;  ///< 1 standard model, 2 Orlo model
};
#pragma pack(pop)
static_assert(sizeof(tagOEMCFG) == 94);
static_assert(offsetof(tagOEMCFG, sHeadPins) == 20);
static_assert(offsetof(tagOEMCFG, OutputColorType) == 24);
static_assert(offsetof(tagOEMCFG, minColorOffset) == 28);
static_assert(offsetof(tagOEMCFG, sConfigured) == 40);
static_assert(offsetof(tagOEMCFG, sEjectMode) == 50);
static_assert(offsetof(tagOEMCFG, SplitBlackRed) == 58);
static_assert(offsetof(tagOEMCFG, BrightnessRed) == 68);
static_assert(offsetof(tagOEMCFG, BrightnessBlack) == 76);
static_assert(offsetof(tagOEMCFG, sFaceDetect) == 88);
static_assert(offsetof(tagOEMCFG, sModel) == 92);

/// The colour settings of the Orlo encoder, filled per page from `tagOEMCFG`
/// and passed by value.
struct _COLORCFG_ORLO {
  uint16_t OutputColorType;   ///< 1 black only, 2 red only, 3 both
  uint16_t ColorRangeUseFor;  ///< the range selects 1 black, 2 red
  tagRGBQUAD minColorOffset;
  tagRGBQUAD maxColorOffset;
  tagRGBQUAD solidColor;   ///< full ink in whichever plane it falls
  uint16_t SplitBlackRed;  ///< 1: one sweep a colour
  int16_t sSpare4;
  int16_t sSpare5;
  int16_t sSpare6;
  int16_t sSpare7;
  int16_t BrightnessRed;
  int16_t ContrastRed;
  int16_t LevelsRed;
  int16_t sDitherRed;
  int16_t BrightnessBlack;
  int16_t ContrastBlack;
  int16_t LevelsBlack;
  int16_t sDitherBlack;
};
static_assert(sizeof(_COLORCFG_ORLO) == 42);
static_assert(offsetof(_COLORCFG_ORLO, BrightnessRed) == 26);

/// The device mode: the five fields of the job that the page path uses. Packed,
/// as a copy of it stands in the packed device record.
#pragma pack(push, 1)
struct _DEVMODE {
  int16_t dmOrientation;   ///< 1 portrait, 2 landscape
  int16_t dmPrintQuality;  ///< horizontal resolution, dots per inch
  int16_t dmYResolution;   ///< vertical resolution, dots per inch
  int16_t dmCollate;       ///< 1: copies are collated
  int16_t dmCopies;
};
#pragma pack(pop)
static_assert(sizeof(_DEVMODE) == 10);
static_assert(offsetof(_DEVMODE, dmPrintQuality) == 2);
static_assert(offsetof(_DEVMODE, dmCollate) == 6);

/// One element of the page's list of section rectangles.
struct SectionRectNode {
  _RECTL rect;
  SectionRectNode* pPrev;
  SectionRectNode* pNext;
};

/// The print areas of a page, keyed by (top, left).
using CRectTree = CDataTree<_RECTL, unsigned long, unsigned long>;

/// The job's device state, packed without gaps. It owns the page bitmap, the
/// output bitmap, the section list, the rectangle tree and the generator.
#pragma pack(push, 1)
struct _OEMPDEV {
  uint8_t bState;
  uint8_t* pBufStart;  ///< page bitmap: BGR rows padded to 4 bytes; malloc'ed
  uint32_t dwBufSize;  ///< its bytes
  tagBITMAPFILEHEADER bmFileHeader;
  tagBITMAPINFOHEADER bmInfoHeader;
  uint32_t dwReserved1;
  uint32_t dwBitsOffset;  ///< 54, the length of the two bitmap headers
  uint32_t dwReserved2;
  uint32_t dwReserved3;
  SectionRectNode* pSectionHead;
  uint32_t dwSectionCount;
  uint32_t dwReserved4;
  uint32_t dwBytesPerLine;  ///< row stride of the page bitmap
  uint32_t dwLines;         ///< rows of the page bitmap
  SectionRectNode* pSectionTail;
  GDIINFO srcGdiInfo;
  CRectTree* pRectTree;  ///< print areas of the page being encoded
  uint32_t dwRectCount;
  uint8_t* pBufStartOut;  ///< output bitmap: the page after offset and rotation; malloc'ed
  uint32_t dwBufSizeOut;  ///< its bytes
  tagBITMAPFILEHEADER bmFileHeaderOut;
  tagBITMAPINFOHEADER bmInfoHeaderOut;
  GDIINFO devGdiInfo;
  uint32_t dwBytesPerLineOut;  ///< row stride of the output bitmap
  CESCPSML* pEscpSml;          ///< from the first page to the end of the document
  uint16_t wReserved5;
  double dScaleX;  ///< resolution / 360 above 360 dpi, else 1.0
  double dScaleY;
  _DEVMODE devModeOut;    ///< the device mode as sent: at most 360 dpi
  uint32_t dwCurPageNum;  ///< from 1; 0 while no page is pending
  uint32_t dwReserved6;
  uint32_t dwReserved7;
  // What follows serves the command generators alone.
  int32_t lFirstRedRow;     ///< row of the pixel that first marked the red plane
  int32_t lInitialYOffset;  ///< pixels moved down before the first band
  int32_t lYCorrection;     ///< top of the first band of a split page's red half
  wchar_t* pszJobText;      ///< handed to the Orlo encoder; nothing fills it
  uint32_t dwWhiteRows;     ///< rows at the page bitmap's end that hold nothing: they are white
  uint32_t dwWhiteRowsOut;  ///< the same of the output bitmap
  uint32_t dwMostBytes;     ///< most that an output bitmap may have before its offset; 0: any
};
#pragma pack(pop)
static_assert(offsetof(_OEMPDEV, pBufStart) == 1);
static_assert(offsetof(_OEMPDEV, dwBufSize) == 9);
static_assert(offsetof(_OEMPDEV, bmFileHeader) == 13);
static_assert(offsetof(_OEMPDEV, bmInfoHeader) == 27);
static_assert(offsetof(_OEMPDEV, dwBitsOffset) == 71);
static_assert(offsetof(_OEMPDEV, pSectionHead) == 83);
static_assert(offsetof(_OEMPDEV, dwSectionCount) == 91);
static_assert(offsetof(_OEMPDEV, dwBytesPerLine) == 99);
static_assert(offsetof(_OEMPDEV, dwLines) == 103);
static_assert(offsetof(_OEMPDEV, pSectionTail) == 107);
static_assert(offsetof(_OEMPDEV, srcGdiInfo) == 115);
static_assert(offsetof(_OEMPDEV, pRectTree) == 115 + sizeof(GDIINFO));
static_assert(offsetof(_OEMPDEV, dwRectCount) == 115 + sizeof(GDIINFO) + 8);
static_assert(offsetof(_OEMPDEV, pBufStartOut) == 115 + sizeof(GDIINFO) + 12);
static_assert(offsetof(_OEMPDEV, bmInfoHeaderOut) == 115 + sizeof(GDIINFO) + 38);
static_assert(offsetof(_OEMPDEV, devGdiInfo) == 115 + sizeof(GDIINFO) + 78);
static_assert(offsetof(_OEMPDEV, dScaleX) == 115 + 2 * sizeof(GDIINFO) + 92);
static_assert(offsetof(_OEMPDEV, dwBytesPerLineOut) == 115 + 2 * sizeof(GDIINFO) + 78);
static_assert(offsetof(_OEMPDEV, pEscpSml) == 115 + 2 * sizeof(GDIINFO) + 82);
static_assert(offsetof(_OEMPDEV, wReserved5) == 115 + 2 * sizeof(GDIINFO) + 90);
static_assert(offsetof(_OEMPDEV, devModeOut) == 115 + 2 * sizeof(GDIINFO) + 108);
static_assert(offsetof(_OEMPDEV, dwCurPageNum) == 115 + 2 * sizeof(GDIINFO) + 118);
static_assert(offsetof(_OEMPDEV, dwReserved7) == 115 + 2 * sizeof(GDIINFO) + 126);

/// The handle passed to every page operation.
struct _DEVOBJ {
  _OEMPDEV* pOemPDEV;
  _DEVMODE* pDevMode;
  tagOEMCFG* pOemDev;
  int32_t nModel;  ///< 1: Orlo encoder, 0: standard model
};
static_assert(offsetof(_DEVOBJ, nModel) == 24);
