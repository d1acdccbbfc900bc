// Where a page of a document lies on the paper, as a job's attributes have it.
#pragma once

#include <vector>

namespace velka::app {

/// The values of print-scaling. All paper is printed to its edges, so "auto" fills it
/// where the page does not fit.
enum class Scaling { Auto, AutoFit, Fill, Fit, None };

/// Those of orientation-requested; None turns a page that lies the other way than the paper.
enum class Turn { None, Portrait, Landscape, ReverseLandscape, ReversePortrait };

/// In points, or any other unit that both sides share.
struct Extent {
  double width = 0;
  double height = 0;
};

struct Wishes {
  Scaling scaling = Scaling::AutoFit;
  Turn turn = Turn::None;
  bool fidelity = false;  ///< "auto" then scales pages that are smaller, too
};

/// Places on the page to places on the paper, both counted from the upper left corner:
/// x' = xx x + xy y + x0 and y' = yx x + yy y + y0.
struct Placing {
  double xx = 1;
  double yx = 0;
  double xy = 0;
  double yy = 1;
  double x0 = 0;
  double y0 = 0;
};

/// The page in the middle of the paper. Sizes that differ by less than half a hundredth
/// count as equal, as paper is named in millimetres or points.
[[nodiscard]] Placing placePage(Extent page, Extent paper, const Wishes& wishes) noexcept;

/// From the paper's unit to its dots.
[[nodiscard]] Placing scaled(const Placing& placing, double x, double y) noexcept;

struct PageRange {
  int first = 1;
  int last = 1;
};

/// Numbers, from 1, of the pages to print of a document of `count`, each once and in order;
/// all of them where there is no range.
[[nodiscard]] std::vector<int> chosenPages(const std::vector<PageRange>& ranges, int count);

}  // namespace velka::app
