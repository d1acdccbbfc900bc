// The processor's single commands and builders, and the size of its output.
#include <cstring>

#include "OrloProcesser.h"
#include "PrintRuns.h"

namespace {

// What a caller with a buffer of its own gets behind the commands.
constexpr uint8_t kPageEnd[] = {velka::kCarriageReturn, 0x0A, velka::kFormFeed};

}  // namespace

int COrloProcesser::sizeOutput(unsigned char** output, unsigned int capacity,
                               unsigned int* outputLength) const noexcept {
  if (m_pCmdBuf == nullptr || outputLength == nullptr) return 0;
  const uint64_t needed = uint64_t{m_dwCmdLen} + sizeof(kPageEnd);
  *outputLength = static_cast<unsigned int>(needed);
  if (output == nullptr || *output == nullptr || capacity < needed) return 1;
  std::memcpy(*output, m_pCmdBuf, m_dwCmdLen);
  std::memcpy(*output + m_dwCmdLen, kPageEnd, sizeof(kPageEnd));
  return 1;
}

// Without memory for more, a move ends with what was appended of it; neither the
// moves nor the two modes further down have a way to tell.

int COrloProcesser::MoveToYPosFromCur(int rows, int verticalDpi) noexcept {
  (void)sink().moveY(static_cast<short>(verticalDpi), rows);
  return 0;
}

int COrloProcesser::MoveToXPosition(int column, int horizontalDpi) noexcept {
  (void)sink().moveToX(static_cast<float>(horizontalDpi) / 60.0F, column);
  return 0;
}

bool COrloProcesser::GetBlockDataCmd(unsigned short mode, tagRECT& run, unsigned char* data,
                                     unsigned int length) noexcept {
  if (data == nullptr) return false;
  return velka::appendBlock(sink(), mode, {run.left, run.right}, {data, length});
}

void COrloProcesser::SetColorMode(int mode) noexcept {
  (void)appendColorMode(mode);
}

bool COrloProcesser::appendColorMode(int mode) noexcept {
  const uint8_t command[] = {velka::kEsc, 'r',
                             static_cast<uint8_t>(static_cast<unsigned>(mode) - 1U)};
  return sink().append(command);
}

void COrloProcesser::SetPaperFeedMode(int mode) noexcept {
  const uint8_t feed = mode == 1 ? 'F' : (mode == 2 ? 'B' : 0);
  const uint8_t command[] = {velka::kEsc, 0x19, feed};
  (void)sink().append(command);
}

bool COrloProcesser::GetSetUnitCmd(int unit, unsigned char** buffer, unsigned int* capacity,
                                   unsigned int* length) noexcept {
  return velka::buildSetUnit(unit, {buffer, capacity, length});
}

bool COrloProcesser::GetXMoveCmd(short kind, float divisor, int x, unsigned char** buffer,
                                 unsigned int* capacity, unsigned int* length) noexcept {
  return velka::buildXMove(kind, divisor, x, {buffer, capacity, length});
}

bool COrloProcesser::GetRelativeYMoveCmd(short ydpi, int64_t dy, unsigned char** buffer,
                                         unsigned int* capacity, unsigned int* length) noexcept {
  return velka::buildRelativeYMove(ydpi, dy, {buffer, capacity, length});
}

bool COrloProcesser::GrowBMPMem(unsigned char** buffer, unsigned int* size, unsigned int extra,
                                short fill) noexcept {
  return velka::growBuffer(buffer, size, extra,
                           static_cast<uint8_t>(static_cast<unsigned short>(fill) & 0xFFU));
}
