// How many digits the number of a PDF's pages has.
#pragma once

#include <optional>
#include <string_view>

namespace velka {

/// Decimal digits (1 to 10) of the PDF's page count as pdfinfo reports it; -1 where it
/// reports none or the path is none for a command line. Waits up to half a minute for
/// other jobs that count.
[[nodiscard]] int countDigits(const char* pdfPath);

/// Digits by the contents of the page-count file: its bytes less the line end, held
/// within 1 to 10; -1 for an empty file. Nothing for a lone line end: the tool pads
/// the count to another column there.
[[nodiscard]] std::optional<int> digitsOfPageCountFile(std::string_view contents) noexcept;

/// Digits of the value on the last line that starts with "Pages:", within 1 to 10;
/// 1 where there is no such value.
[[nodiscard]] int digitsOfPagesLine(std::string_view report) noexcept;

}  // namespace velka
