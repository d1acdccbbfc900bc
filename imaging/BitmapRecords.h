// Windows-shaped bitmap and geometry records, in their published layouts.
//
// The device records keep these shapes because the encoders speak of a page the
// way a printer-driver rendering plug-in does. Only the fields that this system
// reads or writes carry a comment; the rest stay zero.
#pragma once

#include <cstddef>
#include <cstdint>

/// A colour in the byte order of a device-independent bitmap.
struct tagRGBQUAD {
  uint8_t rgbBlue;
  uint8_t rgbGreen;
  uint8_t rgbRed;
  uint8_t rgbReserved;
};
static_assert(sizeof(tagRGBQUAD) == 4);

/// A rectangle of pixels, all four edges inclusive.
struct _RECTL {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};
static_assert(sizeof(_RECTL) == 16);

/// The same shape under the name that the Orlo encoder uses.
struct tagRECT {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};
static_assert(sizeof(tagRECT) == 16);

struct tagPOINT {
  int32_t x;
  int32_t y;
};
static_assert(sizeof(tagPOINT) == 8);

// These stand inside the packed device record, at odd addresses: packing them too
// makes every access to them an unaligned one. Their published layouts have no
// gaps but the end of GDIINFO, which is spelt out.
#pragma pack(push, 1)

/// Bitmap file header.
struct tagBITMAPFILEHEADER {
  uint16_t bfType;
  uint32_t bfSize;
  uint16_t bfReserved1;
  uint16_t bfReserved2;
  uint32_t bfOffBits;
};
static_assert(sizeof(tagBITMAPFILEHEADER) == 14);

/// Bitmap information header. Heights are positive and row 0 is the top row.
struct tagBITMAPINFOHEADER {
  uint32_t biSize;
  int32_t biWidth;   ///< pixels
  int32_t biHeight;  ///< rows
  uint16_t biPlanes;
  uint16_t biBitCount;  ///< bits per pixel
  uint32_t biCompression;
  uint32_t biSizeImage;  ///< bytes, row padding included
  int32_t biXPelsPerMeter;
  int32_t biYPelsPerMeter;
  uint32_t biClrUsed;
  uint32_t biClrImportant;
};
static_assert(sizeof(tagBITMAPINFOHEADER) == 40);

struct _POINTL {
  int32_t x;
  int32_t y;
};

struct tagSIZE {
  int32_t cx;
  int32_t cy;
};

struct _CIECHROMA {
  int32_t x;
  int32_t y;
  int32_t Y;
};

struct _COLORINFO {
  _CIECHROMA Red;
  _CIECHROMA Green;
  _CIECHROMA Blue;
  _CIECHROMA Cyan;
  _CIECHROMA Magenta;
  _CIECHROMA Yellow;
  _CIECHROMA AlignmentWhite;
  int32_t RedGamma;
  int32_t GreenGamma;
  int32_t BlueGamma;
  int32_t MagentaInCyanDye;
  int32_t YellowInCyanDye;
  int32_t CyanInMagentaDye;
  int32_t YellowInMagentaDye;
  int32_t CyanInYellowDye;
  int32_t MagentaInYellowDye;
};
static_assert(sizeof(_COLORINFO) == 120);

/// Device geometry, in pixels.
struct GDIINFO {
  uint32_t ulVersion;
  uint32_t ulTechnology;
  uint32_t ulHorzSize;  ///< page width
  uint32_t ulVertSize;  ///< page height
  uint32_t ulHorzRes;   ///< printable width
  uint32_t ulVertRes;   ///< printable height
  uint32_t cBitsPixel;
  uint32_t cPlanes;
  uint32_t ulNumColors;
  uint32_t flRaster;
  uint32_t ulLogPixelsX;
  uint32_t ulLogPixelsY;
  uint32_t flTextCaps;
  uint32_t ulDACRed;
  uint32_t ulDACGreen;
  uint32_t ulDACBlue;
  uint32_t ulAspectX;
  uint32_t ulAspectY;
  uint32_t ulAspectXY;
  int32_t xStyleStep;
  int32_t yStyleStep;
  int32_t denStyleStep;
  _POINTL ptlPhysOffset;  ///< origin of the printable area on the sheet
  tagSIZE szlPhysSize;    ///< the sheet
  uint32_t ulNumPalReg;
  _COLORINFO ciDevice;
  uint32_t ulDevicePelsDPI;
  uint32_t ulPrimaryOrder;
  uint32_t ulHTPatternSize;
  uint32_t ulHTOutputFormat;
  uint32_t flHTFlags;
  uint32_t ulVRefresh;
  uint32_t ulBltAlignment;
  uint32_t ulPanningHorzRes;
  uint32_t ulPanningVertRes;
  uint32_t xPanningAlignment;
  uint32_t yPanningAlignment;
  uint32_t cxHTPat;
  uint32_t cyHTPat;
  uint8_t* pHTPatA;
  uint8_t* pHTPatB;
  uint8_t* pHTPatC;
  uint32_t flShadeBlend;
  uint32_t ulPhysicalPixelCharacteristics;
  uint32_t ulPhysicalPixelGamma;
  uint32_t ulTailPadding;
};
#pragma pack(pop)
static_assert(sizeof(GDIINFO) == 320);
static_assert(offsetof(GDIINFO, ptlPhysOffset) == 88);
static_assert(offsetof(GDIINFO, szlPhysSize) == 96);
