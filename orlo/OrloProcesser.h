// The Orlo model's page processor: from a page bitmap to printer commands.
//
// This model's head is one column of 24 dots, 18 of them black and 6 red, with ten
// dot rows of nothing in between. So one pass of the head prints black and red rows
// that lie apart on the page, and a page is walked in bands that follow the head.
// The class is a thin surface over OrloSeparation (page to planes) and BandWalk
// (planes to commands).
#pragma once

#include <cstdint>

#include "BitmapRecords.h"
#include "BmpProcessing.h"
#include "CommandBuilders.h"
#include "DataTree.h"
#include "DeviceRecords.h"
#include "OrloPlane.h"
#include "OrloSweeps.h"
#include "PageLoss.h"

/// One ink's colour levels: items and tables for red (0), green (1), blue (2) and
/// all channels at once (3).
struct ORLOLEVELSSET {
  COLORLEVELSITEM items[4];
  uint8_t tables[4][256];
  bool ready[4];
};

/// Makes the commands of one page. Construct one, configure it, call
/// GetOrloPrintCmd once, destroy it: a second call adds to the planes, where they
/// have the same size, and to the commands that were not handed over.
///
/// Inks count as 1 black and 2 red where a `colour` is asked for; the `index` of a
/// tone table is 1 for red and 2 for black. Other indices and channels are ignored, so
/// what lies at index 0 is never filled. Resolutions are dots per inch, rows count from
/// 0 at the top.
class COrloProcesser {
 public:
  COrloProcesser() noexcept;
  /// Frees the planes and commands that were not handed over.
  ~COrloProcesser();
  COrloProcesser(const COrloProcesser&) = delete;
  COrloProcesser& operator=(const COrloProcesser&) = delete;

  // --- Configuration.

  /// Keeps the flag. No operation asks for it.
  void EnableFaceDet(bool enable) noexcept;
  /// Copies the record's fields.
  void SetColorCFG(_COLORCFG_ORLO config) noexcept;
  /// Rows at the bitmap's end that hold nothing and count as white; none by default.
  void SetWhiteRows(uint32_t rows) noexcept { m_WhiteRows = rows; }
  /// Whether the page's last row counts where one of the inks is on no other; it does not
  /// by default.
  void SetLastRowCounts(bool counts) noexcept { m_LastRowCounts = counts; }

  // --- The page.

  /// Makes the commands of a page.
  ///
  /// `bitmap` holds `height` rows of `bitmapSize` / `height` bytes, each `width`
  /// pixels of blue, green, red and padding; what a row is too short for is white.
  /// `feedMode` is 1 for front and 2 for back feed. The name is not used. `*output`
  /// is null, or a buffer of `capacity` bytes.
  ///
  /// Returns
  /// 0: a page without ink or without pixels (`*outputLength` untouched), or the
  ///    commands are in the caller's buffer, the rest of it zeros;
  /// 1: `*output` is a new buffer that the caller frees with `free`, or the caller's
  ///    is too small: `*outputLength` says what is needed, the commands stay here;
  /// 2: a null pointer; nothing done;
  /// 3: no commands (a pair of resolutions or a feed mode that the model does not
  ///    have, or no memory); `*outputLength` is 0.
  int GetOrloPrintCmd(const unsigned char* bitmap, unsigned int bitmapSize, int width, int height,
                      unsigned char** output, unsigned int capacity, unsigned int* outputLength,
                      const wchar_t* name, int horizontalDpi, int verticalDpi,
                      int feedMode) noexcept;

  /// The first half of GetOrloPrintCmd, for another encoder: separates and halftones a page
  /// of pixels into the planes below. False without a bitmap or memory.
  bool MakePlanes(const unsigned char* bitmap, unsigned int bitmapSize, int width, int height,
                  int verticalDpi, int feedMode) noexcept;
  /// The page's planes.
  [[nodiscard]] velka::OrloInks Inks() const noexcept {
    return {m_BlackBuf, m_RedBuf, m_PageWidth, m_PageHeight};
  }

  /// What of the page was lost because memory ran out.
  [[nodiscard]] velka::PageLoss LostForMemory() const noexcept { return m_Loss; }

  // --- Tone.

  /// Builds the light table of an ink; see CBmpProcessing::SetLightTable.
  void SetLightTable(int brightness, int contrast, int index) noexcept;
  /// Resets the channel (3: all), takes over `item` and builds its tables. A null
  /// item does nothing.
  void SetColorLevelsData(COLORLEVELSITEM* item, int channel, int index) noexcept;
  /// Applies the channel's item to its table (3: to all four) and marks it ready.
  void InitColorLevelsTable(int channel, int index) noexcept;
  /// Makes the channel (3: all) neutral and not ready. Not called by others.
  void InitColorLevelsData(int channel, int index) noexcept;
  /// Maps a colour through an ink's tables; `out` stays as it was while the red or
  /// the green table is not ready. Not called by others.
  void GetColorLevelsData(tagRGBQUAD in, tagRGBQUAD* out, int index) noexcept;
  /// Maps a pixel through an ink's light table; pure black and pure white stay.
  /// Returns 1. Not called by others.
  int Light(unsigned char& r, unsigned char& g, unsigned char& b, int index) noexcept;
  /// Whether a colour lies in a colour range; never in one whose bounds cross. Not
  /// called by others.
  bool IsColorBelongRange(tagRGBQUAD colour, tagRGBQUAD low, tagRGBQUAD high) noexcept;

  // --- Planes.

  /// Stores a pixel at y x `rowWidth` + x and widens the plane's box. Nothing
  /// happens without the plane or outside it.
  void AddData2BlackBuf(uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept;
  void AddData2RedBuf(uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept;
  /// The same for the image plane. Not called by others, so that plane stays empty.
  void AddData2ImgBuf(uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept;
  /// Halftones a plane as CESCPSML::Dither does. Returns 1.
  int Dither(int mode, unsigned char* in, unsigned char* out, unsigned int rows, unsigned int width,
             unsigned int stride, unsigned int unused, short dotFactor, short threshold) noexcept;
  /// CBmpProcessing::RotateImg. Not called by others.
  bool RotateImg(unsigned char* src, int64_t width, int64_t height, unsigned char** dst,
                 int64_t* dstSize, int64_t* dstWidth, int64_t* dstHeight, int bitCount,
                 int rotation) noexcept;

  // --- Encoders. They append the commands of the halftoned planes to the command
  // buffer and then size the output: without a caller's buffer, or with one smaller
  // than the commands and three bytes, `*outputLength` receives that sum; else the
  // commands are copied, CR LF FF after them. They return 1 on success; 0 where
  // nothing was to print, the resolutions are not supported or memory ran out.

  /// How the page is put on paper in a feed mode, with the colour split as it is set:
  /// 0: not at all, as the feed mode is neither 1 (front) nor 2 (back) or the split
  ///    neither 0 nor 1;
  /// 1: both inks in one sweep;
  /// 2: a sweep for each ink.
  int GetPrintConstruction(int paperFeedMode) const noexcept;
  /// Picks the encoder by GetPrintConstruction and the feed; 0 where there is none.
  int Encode2EscpSml(unsigned char** output, unsigned int capacity, unsigned int* outputLength,
                     int horizontalDpi, int verticalDpi, int feedMode) noexcept;
  /// Front feed, both inks in one sweep. `currentRow` is where the head stands. The
  /// feed mode is not looked at any more, here and below.
  int Encode2EscpSmlNoSlipt(unsigned char** output, unsigned int capacity,
                            unsigned int* outputLength, int horizontalDpi, int verticalDpi,
                            int feedMode, int currentRow) noexcept;
  /// Back feed, both inks in one sweep.
  int Encode2EscpSmlNoSliptFeedFromBack(unsigned char** output, unsigned int capacity,
                                        unsigned int* outputLength, int horizontalDpi,
                                        int verticalDpi, int feedMode, int currentRow) noexcept;
  /// Front feed, a sweep for black and one for red; `colour` 2 leaves out the black.
  int Encode2EscpSmlHaveSlipt(unsigned char** output, unsigned int capacity,
                              unsigned int* outputLength, int horizontalDpi, int verticalDpi,
                              int feedMode, int currentRow, short colour) noexcept;
  /// Back feed, a sweep for black and one for red; `colour` 2 leaves out the black.
  int Encode2EscpSmlHaveSliptFeedFromBack(unsigned char** output, unsigned int capacity,
                                          unsigned int* outputLength, int horizontalDpi,
                                          int verticalDpi, int feedMode, int currentRow,
                                          short colour) noexcept;

  // --- Commands, appended to the command buffer.

  /// Unit 1/360 inch and a paper move of `rows`, backward when negative. Returns 0.
  int MoveToYPosFromCur(int rows, int verticalDpi) noexcept;
  /// Unit 1/60 inch and an absolute head move to a column. Returns 0.
  int MoveToXPosition(int column, int horizontalDpi) noexcept;
  /// A raster block of the run's columns with `length` bytes of data; the column
  /// count goes out with its low 16 bits. False for null data or without memory.
  bool GetBlockDataCmd(unsigned short mode, tagRECT& run, unsigned char* data,
                       unsigned int length) noexcept;
  /// ESC r: 1 black, 2 red, 3 both.
  void SetColorMode(int mode) noexcept;
  /// ESC EM: 1 front, 2 back feed. No encoder sends it.
  void SetPaperFeedMode(int mode) noexcept;

  // --- Builders, under the contract of CESCPSML's.

  bool GetSetUnitCmd(int unit, unsigned char** buffer, unsigned int* capacity,
                     unsigned int* length) noexcept;
  bool GetXMoveCmd(short kind, float divisor, int x, unsigned char** buffer, unsigned int* capacity,
                   unsigned int* length) noexcept;
  bool GetRelativeYMoveCmd(short ydpi, int64_t dy, unsigned char** buffer, unsigned int* capacity,
                           unsigned int* length) noexcept;
  bool GrowBMPMem(unsigned char** buffer, unsigned int* size, unsigned int extra,
                  short fill) noexcept;

  // --- State.

  uint64_t m_Reserved1 = 0;
  uint64_t m_Reserved2 = 0;
  bool m_bFaceDet = false;
  uint64_t m_RowWidth = 0;  ///< of the last stored pixel
  int64_t m_PageWidth = 0;
  int64_t m_PageHeight = 0;
  velka::OrloPlane m_ImgBuf;
  velka::OrloPlane m_BlackBuf;
  velka::OrloPlane m_RedBuf;
  uint16_t m_OutputColorType = 0;
  uint16_t m_ColorRangeUseFor = 0;
  tagRGBQUAD m_minColorOffset{};
  tagRGBQUAD m_maxColorOffset{};
  tagRGBQUAD m_solidColor{};
  uint16_t m_SplitBlackRed = 0;
  unsigned char* m_pCmdBuf = nullptr;
  unsigned int m_dwCmdLen = 0;
  int16_t m_sSpare4 = 0;
  int16_t m_sSpare5 = 0;
  int16_t m_sSpare6 = 0;
  int16_t m_sSpare7 = 0;
  int16_t m_BrightnessRed = 0;
  int16_t m_ContrastRed = 0;
  int16_t m_LevelsRed = 0;
  int16_t m_sDitherRed = 0;
  int16_t m_BrightnessBlack = 0;
  int16_t m_ContrastBlack = 0;
  int16_t m_LevelsBlack = 0;
  int16_t m_sDitherBlack = 0;
  uint8_t m_LightTable[3][256] = {};
  ORLOLEVELSSET m_ColorLevels[3] = {};
  CDataTree<tagRECT, unsigned long, unsigned long> m_PrintAreas;

 private:
  [[nodiscard]] velka::CommandSink sink() noexcept {
    return {&m_pCmdBuf, &m_dwCmdLen, &m_dwCmdLen};
  }
  [[nodiscard]] bool allocatePlanes() noexcept;
  void prepareTone() noexcept;
  [[nodiscard]] bool separatePage(const unsigned char* bitmap, unsigned int bitmapSize,
                                  int verticalDpi, int feedMode) noexcept;
  void halftone(velka::OrloPlane& plane, int mode) noexcept;
  int handOver(unsigned char** output, unsigned int capacity, unsigned int* outputLength) noexcept;
  int sizeOutput(unsigned char** output, unsigned int capacity,
                 unsigned int* outputLength) const noexcept;
  void dropCommands() noexcept;
  [[nodiscard]] bool appendColorMode(int mode) noexcept;
  [[nodiscard]] bool canPrint(int horizontalDpi, int verticalDpi, int feedMode) const noexcept;
  void addPixel(velka::OrloPlane& plane, uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept;

  uint32_t m_WhiteRows = 0;
  bool m_LastRowCounts = false;
  velka::PageLoss m_Loss = velka::PageLoss::None;
};
