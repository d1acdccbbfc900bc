#include "PageCount.h"

#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <new>
#include <string>

#include "FixedText.h"
#include "OwnFile.h"
#include "PlainNames.h"
#include "ShellCommand.h"

namespace velka {
namespace {

constexpr int kMostDigits = 10;
constexpr size_t kMostReport = 65536;
constexpr const char* kCountFile = "/tmp/PdfPages";

// The page-count file while this job alone may use it. All jobs share the one
// name, so whoever holds the lock on the file behind it has the word; a job that
// waited opens the name again, as the one before has removed its file.
UniqueFd lockCountFile() noexcept {
  constexpr int kAttempts = 6000;
  constexpr useconds_t kPause = 5000;
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    UniqueFd file = openOwnFile(kCountFile, O_RDWR | O_CREAT);
    if (!file) return file;
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
      usleep(kPause);
    } else if (isNamed(file, kCountFile)) {
      return file;
    }
  }
  return UniqueFd();
}

// The pipeline's own redirection finds a file that is ours and locked, so it cannot
// be led elsewhere, and another job's count cannot come in between.
std::optional<int> countByPipeline(const char* pdfPath) noexcept {
  const FixedText command = formatText(
      "pdfinfo %s | grep Pages | cut -d ':' -f 2 | cut -d ' ' -f 11 > %s", pdfPath, kCountFile);
  const UniqueFd file = command.cut ? UniqueFd() : lockCountFile();
  if (!file) return -1;
  // What a job that was killed left behind is no count.
  const bool emptied = ftruncate(file.get(), 0) == 0;
  if (emptied) static_cast<void>(runShell(command.text()));
  std::array<char, 256> contents = {};
  const ssize_t length = pread(file.get(), contents.data(), contents.size(), 0);
  unlink(kCountFile);
  if (!emptied || length < 0) return -1;
  return digitsOfPageCountFile({contents.data(), static_cast<size_t>(length)});
}

int countByReport(const char* pdfPath) {
  return digitsOfPagesLine(outputOfShell(formatText("pdfinfo %s", pdfPath).text(), kMostReport));
}

}  // namespace

int countDigits(const char* pdfPath) {
  if (!isPlainPath(pdfPath)) return -1;
  const std::optional<int> digits = countByPipeline(pdfPath);
  return digits ? *digits : countByReport(pdfPath);
}

std::optional<int> digitsOfPageCountFile(std::string_view contents) noexcept {
  if (contents.empty()) return -1;
  if (contents == "\n") return std::nullopt;
  return std::clamp(static_cast<int>(contents.size()) - 1, 1, kMostDigits);
}

int digitsOfPagesLine(std::string_view report) noexcept {
  constexpr std::string_view kLabel = "Pages:";
  size_t value = std::string_view::npos;
  for (size_t line = 0; line < report.size(); line = report.find('\n', line) + 1) {
    if (report.substr(line).starts_with(kLabel))
      value = report.find_first_not_of(' ', line + kLabel.size());
    if (report.find('\n', line) == std::string_view::npos) break;
  }
  if (value == std::string_view::npos) return 1;
  const size_t end = std::min(report.find_first_not_of("0123456789", value), report.size());
  return std::clamp(static_cast<int>(end - value), 1, kMostDigits);
}

}  // namespace velka
