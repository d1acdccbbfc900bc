// What of a page header the printing filter cannot print.
#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace velka {

/// What is told of a page, or of a job.
enum class Trouble : uint8_t {
  None,
  Colours,     ///< not 24 bits a pixel of chunked RGB
  Resolution,  ///< a pair that the head has no mode for
  TooLarge,    ///< more bytes than a page may take
  TooLong,     ///< the form is longer than its command can say; it prints all the same
  Copy,        ///< no PDF copy of the job, or a page that is not in it
};

/// The first of them that keeps a page from being printed as it is meant. Only the job's
/// first page decides on the resolution: the filter takes it for all of them. `mostBytes` is
/// what mostPageBytes() says.
[[nodiscard]] Trouble headerTrouble(const cups_page_header2_t& header, bool firstPage,
                                    uint64_t mostBytes) noexcept;

/// Whether the page is printed in spite of it.
[[nodiscard]] constexpr bool isPrinted(Trouble trouble) noexcept {
  return trouble == Trouble::None || trouble == Trouble::TooLong;
}

/// What is told: why, and what to do.
[[nodiscard]] std::string troubleText(Trouble trouble, const cups_page_header2_t& header,
                                      uint64_t page);

/// The reason as the printer's state has it; the PPDs have a text for each.
[[nodiscard]] std::string_view stateReason(Trouble trouble) noexcept;

/// All reasons, with commas between them.
[[nodiscard]] std::string allStateReasons();

}  // namespace velka
