#include "PageFiles.h"

#include <array>

#include "OwnFile.h"
#include "PageCount.h"
#include "PlainNames.h"
#include "PpmImage.h"

namespace velka {
namespace {

int digitsOf(int page) noexcept {
  int digits = 1;
  for (; page > 9; page /= 10) ++digits;
  return digits;
}

// A tool's header has some 16 bytes; what has none in these has no pixels either.
bool isHalfPicture(const char* path) noexcept {
  std::array<uint8_t, 64> head = {};
  struct stat status = {};
  const UniqueFd file = openOwnFile(path);
  if (!file || fstat(file.get(), &status) != 0) return false;
  const size_t size = readAll(file.get(), head);
  const PpmHeader header = readPpmHeader(std::span(head).first(size));
  return header.pixels != 0 && static_cast<uint64_t>(status.st_size) <
                                   header.pixels + pixelBytes(header.width, header.height);
}

template <typename Action>
void forEachName(const char* jobId, int page, Action action) noexcept {
  for (int digits = digitsOf(page); digits <= kMostPageDigits; ++digits)
    action(pageFileName(jobId, page, digits));
}

}  // namespace

FixedText pageFileName(const char* jobId, int page, int digits) noexcept {
  return formatText("%s%s-%.*d.ppm", kJobFilePrefix.data(), jobId, digits, page);
}

bool reservePageFiles(const char* jobId, int page) noexcept {
  if (page < 1) return false;
  bool reserved = true;
  forEachName(jobId, page, [&](const FixedText& name) {
    reserved = reserved && !name.cut && makeFreshOwnFile(name.text());
  });
  if (!reserved) removeEmptyPageFiles(jobId, page);
  return reserved;
}

void removeEmptyPageFiles(const char* jobId, int page) noexcept {
  forEachName(jobId, page, [](const FixedText& name) {
    if (!name.cut) removeEmptyOwnFile(name.text());
  });
}

void removeHalfPageFiles(const char* jobId, int page) noexcept {
  forEachName(jobId, page, [](const FixedText& name) {
    if (!name.cut && isHalfPicture(name.text())) removeOwnFile(name.text());
  });
}

void removePageFiles(const char* jobId, int pages) noexcept {
  if (!isPlainName(jobId)) return;
  for (int page = 1; page <= pages; ++page)
    forEachName(jobId, page, [](const FixedText& name) {
      if (!name.cut) removeOwnFile(name.text());
    });
}

}  // namespace velka
