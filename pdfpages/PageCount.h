// How many digits the number of a PDF's pages has.
#pragma once

#include <optional>
#include <string_view>

#include "ToolLimits.h"

namespace velka {

/// That any page number has.
inline constexpr int kMostPageDigits = 10;

struct PageDigits {
  int digits = -1;          ///< 1 to 10; -1 where there is no count
  bool late = false;        ///< the tool was ended because its time was over
  bool counted = false;     ///< the tool ran, so that it would find the same again
  bool toolFailed = false;  ///< the tool was not run, or what it wrote not read
};

/// Decimal digits of the PDF's page count as pdfinfo reports it. None for a path that is
/// none for a command line, and for a file of somebody else. Waits a second for other
/// jobs that count.
[[nodiscard]] PageDigits countDigits(const char* pdfPath, const ToolWatch& watch) noexcept;

/// The same, counted anew only for another file than the last time.
[[nodiscard]] PageDigits knownDigits(const char* pdfPath, const ToolWatch& watch) noexcept;

/// Digits by the contents of the page-count file: its bytes less the line end, held
/// within 1 to 10; -1 for an empty file. Nothing for a lone line end: the tool pads
/// the count to another column there.
[[nodiscard]] std::optional<int> digitsOfPageCountFile(std::string_view contents) noexcept;

/// Digits of the value on the last line that starts with "Pages:", within 1 to 10;
/// 1 where there is no such value.
[[nodiscard]] int digitsOfPagesLine(std::string_view report) noexcept;

/// The pages of a PDF, as pdfinfo reports them; none where it cannot be run or reports none.
/// The path must be a plain one (PlainNames.h).
[[nodiscard]] std::optional<int> countPages(const char* pdfPath, const ToolWatch& watch) noexcept;

/// The number on the last line that starts with "Pages:"; none where there is no such
/// number of at most nine digits.
[[nodiscard]] std::optional<int> pagesOfReport(std::string_view report) noexcept;

}  // namespace velka
