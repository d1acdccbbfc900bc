#include "PageFiles.h"

#include "OwnFile.h"
#include "PlainNames.h"

namespace velka {
namespace {

constexpr int kMostDigits = 10;

int digitsOf(int page) noexcept {
  int digits = 1;
  for (; page > 9; page /= 10) ++digits;
  return digits;
}

template <typename Action>
void forEachName(const char* jobId, int page, Action action) noexcept {
  for (int digits = digitsOf(page); digits <= kMostDigits; ++digits)
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

void removePageFiles(const char* jobId, int pages) noexcept {
  if (!isPlainName(jobId)) return;
  for (int page = 1; page <= pages; ++page)
    forEachName(jobId, page, [](const FixedText& name) {
      if (!name.cut) removeOwnFile(name.text());
    });
}

}  // namespace velka
