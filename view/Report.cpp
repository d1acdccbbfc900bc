#include "Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "PageCheck.h"
#include "Progress.h"

namespace velka::view {

int fail(const std::string& text, Status status) {
  clearProgress();
  (void)std::fprintf(stderr, "velkaview: %s\n", text.c_str());
  return status;
}

int finish(const Stream& stream, const std::optional<decode::Fault>& fault, int status) {
  if (!fault) return status;
  return std::max(status, fail(faultText(stream, *fault)));
}

std::string pageText(const Stream& stream, uint64_t number, const decode::Page& page) {
  return stream.name + ": page " + std::to_string(number) + " (offset " +
         std::to_string(page.offset) + "): ";
}

void warnOfPage(const Stream& stream, uint64_t number, const decode::Page& page, uint64_t outside) {
  std::string text = decode::textOf(decode::checkPage(page, stream.model));
  if (outside > 0) {
    text += (text.empty() ? "" : "; ") + std::to_string(outside) +
            (outside == 1 ? " dot misses the paper" : " dots miss the paper");
  }
  if (!text.empty()) (void)fail(pageText(stream, number, page) + text);
}

// Output that cannot be written (a full disk, say) must not pass for done.
int flushed(int status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  return fail("standard output cannot be written");
}

decode::PaperWidth paperWidth(const Arguments& arguments, const Stream& stream) {
  if (!arguments.width) return {stream.leastWidth, false};
  return {std::llround(*arguments.width / 25.4 * static_cast<double>(decode::kUnitsPerInch)), true};
}

PaperView paperView(const Arguments& arguments, const Stream& stream, const decode::Grid& grid) {
  return {stream.model,
          grid,
          paperWidth(arguments, stream),
          arguments.dpi,
          arguments.scale.value_or(1),
          arguments.pins};
}

}  // namespace velka::view
