#include "ExactSweep.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "HeadResolution.h"

namespace velka {
namespace {

constexpr int kPositionsPerInch = 60;
constexpr int kDotsPerByte = 8;

// Where columns and 1/60 inch meet.
int64_t columnsBetweenStarts(int xdpi) noexcept {
  return xdpi / std::gcd(xdpi, kPositionsPerInch);
}

// A column that opens a run must lie in it, as far behind the run's start as it may be.
RunRules runRulesOf(const ExactHead& head) noexcept {
  const int64_t step = columnsBetweenStarts(head.xdpi);
  // The standard model's printers know one block an ink and pass, blank or not in between.
  if (head.namesInk) return {step, step - 1, std::numeric_limits<int64_t>::max(), true};
  return {step, std::max(kShortestRunSpan, step - 1), kMostBlankColumns, true};
}

}  // namespace

std::optional<ExactHead> standardHead(int16_t headPins, int16_t xdpi, int16_t ydpi) noexcept {
  const auto mode = standardBitImageMode(headPins, ydpi, xdpi);
  if (!mode || mode->bytesPerColumn == 0 || xdpi <= 0 || ydpi <= 0) return std::nullopt;
  const NozzleGroup pins = {0, kDotsPerByte * mode->bytesPerColumn, 0};
  return ExactHead{pins, pins, true, *mode, xdpi, ydpi};
}

std::optional<ExactHead> orloHead(const HeadLayout& layout, int xdpi, int ydpi) noexcept {
  const auto resolution = headResolution(xdpi, ydpi);
  if (!resolution || xdpi <= 0 || ydpi <= 0) return std::nullopt;
  const BitImageMode mode = {PassColumns::kColumnBytes, resolution->mode};
  return ExactHead{layout.black, layout.red, false, mode, xdpi, ydpi};
}

ExactSweep::ExactSweep(const ExactHead& head, const DotPlane& black, const DotPlane& red,
                       int64_t topRow, const CommandSink& sink) noexcept
    : head_(head),
      planes_{black, red},
      runRules_(runRulesOf(head)),
      sink_(sink),
      paper_(head.ydpi, topRow, sink) {}

bool ExactSweep::prepare() noexcept {
  const int64_t width = std::max(planes_[kBlack].width, planes_[kRed].width);
  return rows_[kBlack].scan(planes_[kBlack]) && rows_[kRed].scan(planes_[kRed]) &&
         columns_.allocate(width, head_.mode.bytesPerColumn);
}

bool ExactSweep::print(const SweepInks& inks) noexcept {
  const int passes = head_.passes();
  HeadStops stops({head_.black, inks.black ? &rows_[kBlack] : nullptr},
                  {head_.red, inks.red ? &rows_[kRed] : nullptr}, passes, lowestBase());
  while (const auto stop = stops.next())
    if (!printStop(*stop)) return false;
  return true;
}

// Where all dots have one ink, the head can stand higher at the page's end and reach all
// that is left; the Orlo head's groups cannot.
int64_t ExactSweep::lowestBase() const noexcept {
  if (!head_.namesInk) return std::numeric_limits<int64_t>::max();
  const int64_t rows = std::max(planes_[kBlack].rows, planes_[kRed].rows);
  return std::max<int64_t>(rows - head_.black.beyond(head_.passes()), 0);
}

bool ExactSweep::printStop(const HeadStop& stop) noexcept {
  const Ink black = {kBlack, head_.black, planes_[kBlack], rows_[kBlack], stop.black};
  const Ink red = {kRed, head_.red, planes_[kRed], rows_[kRed], stop.red};
  for (int pass = 0; pass < head_.passes(); ++pass) {
    // The ink that the head has last is the one it goes on with.
    const auto inks = pass == 0 ? std::array{black, red} : std::array{red, black};
    if (!printPass(inks, stop.base + pass)) return false;
  }
  return true;
}

bool ExactSweep::printPass(const std::array<Ink, 2>& inks, int64_t row) noexcept {
  columns_.clear();
  for (const Ink& ink : inks) {
    addSlots(ink, row);
    if (!head_.namesInk) continue;
    if (!strike(row, ink.colour)) return false;
    columns_.clear();
  }
  return head_.namesInk || strike(row, kBlack);
}

void ExactSweep::addSlots(const Ink& ink, int64_t row) noexcept {
  for (int i = 0; i < ink.nozzles.count; ++i) {
    const int64_t at = row + int64_t{head_.passes()} * (ink.nozzles.firstSlot + i);
    if (ink.printed.contains(at) && ink.rows.isInked(at))
      columns_.addRow(ink.plane.row(at), ink.nozzles.firstBit + i);
  }
}

bool ExactSweep::strike(int64_t row, Colour colour) noexcept {
  if (columns_.isBlank()) return true;
  if (!paper_.moveTo(row)) return false;
  const auto bytes = columns_.pack();
  const size_t bytesPerColumn = columns_.bytesPerColumn();
  const int64_t width = std::max(planes_[kBlack].width, planes_[kRed].width);
  PrintRuns runs(bytes, bytesPerColumn, width, runRules_);
  while (const auto run = runs.next()) {
    const auto from = static_cast<size_t>(run->left) * bytesPerColumn;
    const auto size = static_cast<size_t>(run->right - run->left + 1) * bytesPerColumn;
    if (!sendBlock(*run, bytes.subspan(from, size), colour)) return false;
  }
  return true;
}

bool ExactSweep::sendBlock(const PrintRun& run, std::span<const uint8_t> data,
                           Colour colour) noexcept {
  const int64_t x = run.left * kPositionsPerInch / head_.xdpi;
  if (!sink_.moveToX(1.0F, static_cast<int>(x))) return false;
  if (head_.namesInk && !sink_.append(selectColour(colour))) return false;
  return appendBlock(sink_, head_.mode.mode, run, data);
}

}  // namespace velka
