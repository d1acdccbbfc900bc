#include "WhiteRows.h"

#include <algorithm>
#include <cstring>

namespace velka {
namespace {

struct Bitmap {
  uint8_t* bytes;
  uint32_t size;
  int32_t rows;
  uint32_t whiteRows;

  [[nodiscard]] size_t storedBytes() const noexcept {
    if (bytes == nullptr) return 0;
    if (rows <= 0 || whiteRows == 0) return size;
    const auto all = static_cast<uint32_t>(rows);
    const size_t stride = size / all;
    return stride * (all - std::min(whiteRows, all));
  }
  void whiten() const noexcept {
    const size_t stored = storedBytes();
    if (bytes != nullptr) std::memset(bytes + stored, 0xFF, size - stored);
  }
};

Bitmap pageOf(const _OEMPDEV& pdev) noexcept {
  return {pdev.pBufStart, pdev.dwBufSize, pdev.bmInfoHeader.biHeight, pdev.dwWhiteRows};
}

Bitmap outputOf(const _OEMPDEV& pdev) noexcept {
  return {pdev.pBufStartOut, pdev.dwBufSizeOut, pdev.bmInfoHeaderOut.biHeight, pdev.dwWhiteRowsOut};
}

}  // namespace

std::span<uint8_t> storedPage(const _OEMPDEV& pdev) noexcept {
  return {pdev.pBufStart, pageOf(pdev).storedBytes()};
}

std::span<uint8_t> storedOutput(const _OEMPDEV& pdev) noexcept {
  return {pdev.pBufStartOut, outputOf(pdev).storedBytes()};
}

void whitenPage(_OEMPDEV& pdev) noexcept {
  pageOf(pdev).whiten();
  pdev.dwWhiteRows = 0;
}

void whitenOutput(_OEMPDEV& pdev) noexcept {
  outputOf(pdev).whiten();
  pdev.dwWhiteRowsOut = 0;
}

}  // namespace velka
