// What stands in the requests of the page, checked.
#pragma once

#include <optional>
#include <variant>

#include "Pieces.h"
#include "WantedInk.h"
#include "Workbench.h"

namespace velka::serve {

/// The settings, each "o.KEYWORD=CHOICE", `page`, and `tab` and `turn` of whoever asks. A
/// parameter that there is not is refused.
[[nodiscard]] std::variant<Wish, Refusal> wishOf(const Request& request,
                                                 const PrinterOptions& options);

/// What of a picture is looked at, and how.
struct Look {
  double dpi = 0;
  Frame frame;
  bool pins = false;
};

/// From `dpi`, `x`, `y`, `w`, `h` in pixels, `pins=1`; none where one is missing or out of
/// its range.
[[nodiscard]] std::optional<Look> lookOf(const Request& request);
inline constexpr const char* kNoLook =
    "a look is dpi from 10 to 2400, x, y, w and h in pixels of a screen";

/// In millimetres from the top left corner of the page; `reach` to each side.
struct MillimetrePlace {
  double x = 0;
  double y = 0;
  double reach = 0;
};
[[nodiscard]] std::optional<MillimetrePlace> placeOf(const Request& request);

/// From `rgb`, six digits.
[[nodiscard]] std::optional<uint32_t> colourOf(const Request& request);

/// From `ink` and `rgb`.
[[nodiscard]] std::optional<InkWish> inkWishOf(const Request& request);

}  // namespace velka::serve
