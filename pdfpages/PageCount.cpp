#include "PageCount.h"

#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <new>
#include <string>

#include "FixedText.h"
#include "JobPdf.h"
#include "OwnFile.h"
#include "PlainNames.h"
#include "ShellCommand.h"
#include "ToolGuard.h"

namespace velka {
namespace {

constexpr size_t kMostReport = 65536;
constexpr size_t kMostCount = 256;
constexpr const char* kCountFile = "/tmp/PdfPages";

// The page-count file while this job alone may use it, emptied: what a job that was
// killed left behind is no count. All jobs share the one name, so whoever holds the lock
// on the file behind it has the word; a job that waited opens the name again, as the one
// before has removed its file. None where somebody else's file stands there, or another
// job does not come to its end.
UniqueFd lockCountFile(const ToolWatch& watch) noexcept {
  constexpr int kAttempts = 200;
  constexpr useconds_t kPause = 5000;
  for (int attempt = 0; attempt < kAttempts && watch.cancelled == 0; ++attempt) {
    UniqueFd file = openOwnFile(kCountFile, O_RDWR | O_CREAT);
    if (!file) break;
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
      usleep(kPause);
    } else if (isNamed(file, kCountFile)) {
      return ftruncate(file.get(), 0) == 0 ? std::move(file) : UniqueFd();
    }
  }
  return UniqueFd();
}

struct CountText {
  ToolEnd end;
  std::string text;  ///< empty where there is none
  bool read = true;
};

// What stands behind the label on the last line that starts with it, up to what is no
// digit; nothing where there is no such line.
std::optional<std::string_view> pagesValue(std::string_view report) noexcept {
  constexpr std::string_view kLabel = "Pages:";
  size_t value = std::string_view::npos;
  for (size_t line = 0; line < report.size(); line = report.find('\n', line) + 1) {
    if (report.substr(line).starts_with(kLabel))
      value = report.find_first_not_of(' ', line + kLabel.size());
    if (report.find('\n', line) == std::string_view::npos) break;
  }
  if (value == std::string_view::npos) return std::nullopt;
  const size_t end = std::min(report.find_first_not_of("0123456789", value), report.size());
  return report.substr(value, end - value);
}

bool isRun(const ToolEnd& end) noexcept {
  return end.status != -1 && end.status != kNoDescriptors << 8 && end.status != kNoGuard << 8;
}

// The pipeline's own redirection finds a file that is ours and locked, so it cannot
// be led elsewhere, and another job's count cannot come in between.
CountText countIntoFile(const UniqueFd& file, const char* command, const ToolWatch& watch) {
  CountText count;
  count.end = runShell(command, watch);
  std::array<uint8_t, kMostCount> contents = {};
  // What cannot be read counts as empty.
  const size_t size = readAll(file.get(), contents);
  count.read = errno == 0;
  count.text.assign(contents.begin(), contents.begin() + size);
  unlink(kCountFile);
  return count;
}

CountText countWithoutFile(const char* pipeline, const ToolWatch& watch) {
  CountText count;
  count.end = readShell(pipeline, watch, kMostCount, count.text);
  return count;
}

CountText countText(const char* pipeline, const char* command, const ToolWatch& watch) {
  const UniqueFd file = lockCountFile(watch);
  return file ? countIntoFile(file, command, watch) : countWithoutFile(pipeline, watch);
}

PageDigits countByReport(const char* pdfPath, const ToolWatch& watch) {
  std::string report;
  const ToolEnd end =
      readShell(formatText("pdfinfo %s", pdfPath).text(), watch, kMostReport, report);
  return {end.status == 0 ? digitsOfPagesLine(report) : -1, end.late, isRun(end), !isRun(end)};
}

// The shell's own, as where it lacks descriptors: the last tool of the pipeline has status 0
// whatever comes. One command alone may go.
bool isShellFailure(const CountText& count) noexcept {
  const int status = count.end.status;
  return count.text.empty() && WIFEXITED(status) && WEXITSTATUS(status) != 0;
}

}  // namespace

PageDigits countDigits(const char* pdfPath, const ToolWatch& watch) noexcept try {
  if (!isPlainPath(pdfPath) || jobPdfAt(pdfPath).state == PdfState::Foreign) return {};
  const FixedText pipeline =
      formatText("pdfinfo %s | grep Pages | cut -d ':' -f 2 | cut -d ' ' -f 11", pdfPath);
  const FixedText command = formatText("%s > %s", pipeline.text(), kCountFile);
  if (pipeline.cut || command.cut) return {};
  const CountText count = countText(pipeline.text(), command.text(), watch);
  const std::optional<int> digits = digitsOfPageCountFile(count.text);
  if (!digits || isShellFailure(count)) return countByReport(pdfPath, watch);
  const bool ran = isRun(count.end);
  return {*digits, count.end.late, ran, !count.end.late && !(ran && count.read)};
} catch (const std::bad_alloc&) {
  return {-1, false, false, true};
}

PageDigits knownDigits(const char* pdfPath, const ToolWatch& watch) noexcept {
  static FileIdentity counted;
  static PageDigits known;
  const JobPdf pdf = jobPdfAt(pdfPath);
  const bool same = pdf.state == PdfState::Ours && known.counted && pdf.identity == counted;
  if (same) return known;
  known = countDigits(pdfPath, watch);
  counted = pdf.identity;
  return known;
}

std::optional<int> digitsOfPageCountFile(std::string_view contents) noexcept {
  if (contents.empty()) return -1;
  if (contents == "\n") return std::nullopt;
  return std::clamp(static_cast<int>(contents.size()) - 1, 1, kMostPageDigits);
}

int digitsOfPagesLine(std::string_view report) noexcept {
  const auto value = pagesValue(report);
  return value ? std::clamp(static_cast<int>(value->size()), 1, kMostPageDigits) : 1;
}

std::optional<int> pagesOfReport(std::string_view report) noexcept {
  constexpr size_t kMostKept = 9;
  const auto value = pagesValue(report);
  if (!value || value->empty() || value->size() > kMostKept) return std::nullopt;
  int pages = 0;
  std::from_chars(value->data(), value->data() + value->size(), pages);
  return pages;
}

std::optional<int> countPages(const char* pdfPath, const ToolWatch& watch) noexcept try {
  const FixedText command = formatText("pdfinfo %s", pdfPath);
  if (!isPlainPath(pdfPath) || command.cut) return std::nullopt;
  std::string report;
  const ToolEnd end = readShell(command.text(), watch, kMostReport, report);
  return end.status == 0 ? pagesOfReport(report) : std::nullopt;
} catch (const std::bad_alloc&) {
  return std::nullopt;
}

}  // namespace velka
