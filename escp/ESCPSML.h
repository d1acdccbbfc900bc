// The standard model's generator and the page renderer that serves both models.
//
// A page comes in as the output bitmap of the device record and leaves as
// printer commands on standard output. The class is a thin surface: the work is
// done by the pure functions of CommandBytes, Separation, BlockPacking and the
// image library.
#pragma once

#include <cstdint>
#include <span>

#include "BitImageMode.h"
#include "CopyPages.h"
#include "DeviceRecords.h"
#include "PageLoss.h"
#include "PagePlacement.h"

namespace velka {
class CommandBuffer;
class InkRules;
}  // namespace velka

/// Command generator of the standard model. One object serves a job, from its
/// first page to the end of the document; `_OEMPDEV::pEscpSml` holds it.
///
/// Builders share one contract. `buffer`, `capacity` and `length` must not be
/// null (else false). Where `*buffer` is null, a zeroed buffer of exactly the
/// size needed is allocated with `malloc`, which the caller frees with `free`.
/// On success `*capacity` and `*length` both receive the bytes written.
class CESCPSML {
 public:
  CESCPSML() noexcept = default;
  /// Frees the planes and the copy buffer.
  ~CESCPSML();
  CESCPSML(const CESCPSML&) = delete;
  CESCPSML& operator=(const CESCPSML&) = delete;

  /// Names the flag that a cancelled job sets; none by default. It is asked before each
  /// page of each copy but the first; the page that is being sent is sent to its end.
  void SetCancelFlag(velka::CancelFlag canceled) noexcept { m_pCanceled = canceled; }

  // --- Senders: straight to standard output. A write that fails is ignored.

  /// Reset, line spacing, page length (7 bytes). Returns true; false without a
  /// complete handle.
  bool SendStartDocCmd(_DEVOBJ* devobj) noexcept;
  /// Reset (2 bytes). Returns true.
  bool SendEndDocCmd(_DEVOBJ* devobj) noexcept;
  /// Form feed (1 byte). Returns true. Not used on the page path.
  bool SendEndPageCmd(_DEVOBJ* devobj) noexcept;
  /// The eject-mode command (4 bytes or none). Returns true; false without a
  /// complete handle. Not used on the page path.
  bool SendEjectModeCmd(_DEVOBJ* devobj) noexcept;
  /// `length` bytes from `data`; the other arguments are ignored. Returns the
  /// number of bytes written.
  unsigned int SendCommand(_DEVOBJ* devobj, const unsigned char* data, unsigned int length,
                           unsigned char flag, const wchar_t* name) noexcept;
  /// The collated copies kept by EncodeAndSend: every page of the job again,
  /// `sCopies` - 1 times, or until the job is cancelled. Nothing where none are kept.
  /// Returns true.
  bool SendCollatedCopies(_DEVOBJ* devobj) noexcept;

  // --- Builders.

  /// Unit of the following moves, in 1/3600 inch (6 bytes). False where an
  /// existing buffer's capacity is smaller; `*length` is then the size needed.
  bool GetSetUnitCmd(int unit, unsigned char** buffer, unsigned int* capacity,
                     unsigned int* length) noexcept;
  /// Horizontal move to x / divisor (4 bytes, capacity not looked at). `kind` 1 is
  /// absolute, 2 relative; any other is false (a buffer allocated for it stays).
  bool GetXMoveCmd(short kind, float divisor, int x, unsigned char** buffer, unsigned int* capacity,
                   unsigned int* length) noexcept;
  /// Paper move of `dy` rows at `ydpi`, backward when negative (7n + 1 bytes for n
  /// commands, none for less than 1/360 inch). Capacity as in GetSetUnitCmd.
  bool GetRelativeYMoveCmd(short ydpi, int dy, unsigned char** buffer, unsigned int* capacity,
                           unsigned int* length) noexcept;
  /// The older forward move in 1/180 inch (3n + 1 bytes). Capacity as in
  /// GetSetUnitCmd. Not used on the page path.
  bool GetAdvancesYMoveCmd(short ydpi, int dy, unsigned char** buffer, unsigned int* capacity,
                           unsigned int* length) noexcept;
  /// Form feed (1 byte, capacity not looked at).
  bool GetEndPageCmd(unsigned char** buffer, unsigned int* capacity, unsigned int* length) noexcept;
  /// Eject mode of the current page (4 bytes, or none where the rule asks for no
  /// command; capacity not looked at). False without a complete handle.
  bool GetEjectModeCmd(_DEVOBJ* devobj, unsigned char** buffer, unsigned int* capacity,
                       unsigned int* length) noexcept;
  /// Grows a `malloc`ed buffer by exactly `extra` bytes, each the low byte of
  /// `fill`. False, with both unchanged, when memory or 32 bits run out.
  bool GrowBMPMem(unsigned char** buffer, unsigned int* size, unsigned int extra,
                  short fill) noexcept;

  // --- Pages.

  /// Separates, halftones, encodes and sends the output bitmap of the device
  /// record. Returns the result of EncodeAndSend, 0 without a complete handle or
  /// when the planes cannot be allocated. The second argument is not used.
  int SendCurPage3(_DEVOBJ* devobj, bool unused) noexcept;

  /// The first half of SendCurPage3, for another encoder: separates and halftones the
  /// output bitmap of the device record into the planes below, of which PlaneRows() rows
  /// hold anything; the others count as white. Where `toPageEnd` those are all: there are
  /// halftones that put dots on white paper. False without a complete handle or memory.
  bool MakePlanes(_DEVOBJ* devobj, bool toPageEnd) noexcept;
  [[nodiscard]] int PlaneRows() const noexcept { return m_nPlaneRows; }
  void ReleasePlanes() noexcept;
  /// The end of the second half: sends a page's commands and a form feed, which is
  /// appended to them, and sees to the copies. False when memory runs out.
  bool SendPageCommands(_DEVOBJ* devobj, velka::CommandBuffer& commands) noexcept;

  /// Halftones `rows` x `width` bytes (rows `stride` apart) from `in` to `out`, which
  /// may be one plane: 0 = dot, 255 = none. Modes: 1 threshold, 3 to 6 ordered screens, any other
  /// error diffusion, which modifies `in`. Returns 1.
  int Dither(int mode, unsigned char* in, unsigned char* out, unsigned int rows, unsigned int width,
             unsigned int stride, unsigned int unused, short dotFactor, short threshold) noexcept;

  /// Whether a colour lies in a colour range; never in one whose bounds cross.
  bool IsColorBelongRange(tagRGBQUAD colour, tagRGBQUAD low, tagRGBQUAD high) noexcept;

  /// Encodes and writes the current page from the planes and the page's rectangle
  /// tree. `second` is 1 for the red half of a split page, else 0. Returns 1 on
  /// success; 0 for a page without bands or ink, a resolution that the head does
  /// not take, or memory that runs out.
  int EncodeAndSend(_DEVOBJ* devobj, short second) noexcept;

  /// Appends the positioning and the block of one band and colour (1 black, 2 red)
  /// to the page buffer. `*currentY` is the row reached by that colour. Returns 1,
  /// also for an empty block; 0 on failure. The second rectangle is not used.
  int EncodeBlockData(unsigned short mode, unsigned short bytesPerColumn, _RECTL& area,
                      _RECTL& unused, int colour, float xDivisor, unsigned char** pageBuffer,
                      unsigned int* pageLength, unsigned int xOffset, unsigned int* writePosition,
                      unsigned int* currentY, short ydpi, int pass, int yCorrection) noexcept;

  /// Builds the block of one band, colour (1 black, 2 red) and pass. A null
  /// `command` is allocated with `malloc`, another must be large enough. A blank
  /// band leaves `*commandLength` at 0. `*leadingSkip` is the number of columns
  /// left out at the left. Returns true; false for another colour or without
  /// memory.
  bool GetBlockDataCmd(unsigned short mode, unsigned short bytesPerColumn, _RECTL& area,
                       short colour, unsigned char*& command, unsigned int* commandLength,
                       unsigned int* leadingSkip, float xDivisor, int pass) noexcept;

  /// What of the last page was lost because memory ran out.
  [[nodiscard]] velka::PageLoss LostForMemory() const noexcept { return m_Loss; }

  // --- State. Planes hold one byte a pixel: 255 no ink, 0 full ink, after
  // halftoning only those two. They live while a page is encoded.

  unsigned char* m_pBlackBuf = nullptr;
  unsigned int m_dwBlackSize = 0;
  int m_nBlackFlag = 0;  ///< a pixel of the page went to the black plane
  unsigned char* m_pRedBuf = nullptr;
  unsigned int m_dwRedSize = 0;
  int m_nRedFlag = 0;
  int m_nPlaneStride = 0;  ///< bytes a plane row
  int m_nPageWidth = 0;
  int m_nPageHeight = 0;
  short m_sYResolution = 360;
  unsigned char* m_pImgBuf = nullptr;  ///< merged into the black plane when its flag is set
  unsigned int m_dwImgSize = 0;
  int m_nImgFlag = 0;
  int m_nRedStarted = 0;                ///< the last red block carried data
  int m_nBlackStarted = 0;              ///< the last black block carried data
  unsigned char* m_pCopyBuf = nullptr;  ///< commands kept for the copies
  unsigned int m_dwCopyLen = 0;
  CDataTree<tagRECT, unsigned long, unsigned long> m_RectTree;

 private:
  struct PageStream;

  [[nodiscard]] bool allocatePlanes() noexcept;
  [[nodiscard]] bool separatePage(_DEVOBJ& devobj, bool toPageEnd) noexcept;
  void clearPlaneRows(int first, int end) noexcept;
  void clearPlanesTo(int row) noexcept;
  void separateBand(_OEMPDEV& pdev, const velka::InkRules& rules, int top, int bottom) noexcept;
  void halftonePlanes(const _DEVOBJ& devobj) noexcept;
  void mergeImagePlane(const _DEVOBJ& devobj) noexcept;

  [[nodiscard]] bool sendPage(_DEVOBJ& devobj, velka::BitImageMode mode, std::span<_RECTL> bands,
                              bool redHalf) noexcept;
  [[nodiscard]] bool encodeBands(const _DEVOBJ& devobj, velka::BitImageMode mode,
                                 std::span<_RECTL> bands, bool redHalf,
                                 PageStream& stream) noexcept;
  [[nodiscard]] bool encodeInk(const _DEVOBJ& devobj, velka::BitImageMode mode,
                               std::span<_RECTL> band, int colour, PageStream& stream) noexcept;
  [[nodiscard]] bool finishBlackHalf(_DEVOBJ& devobj, std::span<const _RECTL> bands,
                                     PageStream& stream) noexcept;
  [[nodiscard]] bool finishPage(bool complete, unsigned int copiesBefore) noexcept;
  [[nodiscard]] bool keepForm(const _DEVOBJ& devobj) noexcept;
  [[nodiscard]] bool keepForCopies(const _DEVOBJ& devobj,
                                   const velka::CommandBuffer& stream) noexcept;
  [[nodiscard]] bool endPage(const _DEVOBJ& devobj, velka::CommandBuffer& stream) noexcept;
  [[nodiscard]] bool repeatPage(const _DEVOBJ& devobj) noexcept;
  void repeatKept(int times) const noexcept;

  int m_nPlaneRows = 0;  // rows of the planes that hold anything
  velka::PageLoss m_Loss = velka::PageLoss::None;
  velka::CancelFlag m_pCanceled = nullptr;
  velka::CopyPages m_CopyPages;  // in the copy buffer
  int32_t m_nFirstForm = 0;      // lines; 0: no page is kept yet
  int32_t m_nKeptForm = 0;       // of the last page kept
};

/// Renders the page bitmap of the device record: places it by the print offsets,
/// rotates it, sends the start-of-document commands and hands the page to the
/// encoder of the job's model. Releases the page bitmap. Returns the encoder's
/// result: true when it produced the page's commands. False without a complete
/// handle or when the output bitmap cannot be allocated.
///
/// The front end (`velka_filter`) defines this one, because it lends the renderer
/// its buffers.
bool RenderEscpData(_DEVOBJ* devobj) noexcept;

namespace velka {

/// The standard model's page as its printers have always been sent it.
bool sendStandardPage(_DEVOBJ& devobj, PageLoss& loss) noexcept;

/// What the renderer borrows from above: the page buffers, which belong to the
/// front end, and how pages are put on paper.
struct PageServices {
  void (*freePageBuffer)(_OEMPDEV* pdev);
  /// The page buffer becomes the output buffer.
  void (*movePageBuffer)(_OEMPDEV* pdev);
  void (*freeOutputBuffer)(_OEMPDEV* pdev);
  void (*freeSections)(_OEMPDEV* pdev);
  // How a page is put on paper: where it lies, and the encoder of each model. Those write
  // the output bitmap's commands and return false where there are none; `loss` is what
  // memory that ran out took from the page. The standard model's ends the page, too.
  void (*growGeometry)(_OEMPDEV& pdev, int16_t orientation,
                       const PageOffset& offset) = velka::growGeometry;
  void (*placePage)(const BitmapView& source, const BitmapView& output, int32_t rows,
                    const PageOffset& offset) = velka::placePage;
  bool (*sendStandardPage)(_DEVOBJ& devobj, PageLoss& loss) = velka::sendStandardPage;
  bool (*sendOrloPage)(_DEVOBJ& devobj, PageLoss& loss);
};

/// RenderEscpData with its services named.
bool renderPage(_DEVOBJ* devobj, const PageServices& services) noexcept;

}  // namespace velka
