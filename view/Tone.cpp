#include "Tone.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "Carriage.h"
#include "PageCells.h"
#include "TextFormat.h"

namespace velka::view {
namespace {

int64_t fieldsIn(int64_t units) {
  return std::max<int64_t>(
      1, static_cast<int64_t>(std::floor(decode::millimetres(units) / kToneField)));
}

// The field that each cell of a row, or of a column, belongs to.
std::vector<size_t> fieldsOf(int64_t cells, int64_t fields) {
  std::vector<size_t> numbers;
  for (int64_t cell = 0; cell < cells; ++cell) {
    numbers.push_back(static_cast<size_t>(cell * fields / cells));
  }
  return numbers;
}

std::vector<double> cellsEach(const std::vector<size_t>& numbers, int64_t fields) {
  std::vector<double> cells(static_cast<size_t>(fields), 0);
  for (const size_t number : numbers) ++cells[number];
  return cells;
}

// Adds up the cells of each field, row by row.
ToneMap mapOf(const decode::PageCells& cells, int64_t across, int64_t down) {
  ToneMap map;
  map.across = std::clamp<int64_t>(across, 1, std::max<int64_t>(1, cells.width()));
  map.down = std::clamp<int64_t>(down, 1, std::max<int64_t>(1, cells.height()));
  map.fields.resize(static_cast<size_t>(map.across * map.down));
  const std::vector<size_t> columns = fieldsOf(cells.width(), map.across);
  const std::vector<size_t> rows = fieldsOf(cells.height(), map.down);
  std::vector<uint8_t> row(columns.size());
  for (size_t y = 0; y < rows.size(); ++y) {
    if (cells.isBlank(static_cast<int64_t>(y), 1)) continue;
    cells.draw(static_cast<int64_t>(y), row);
    auto* above = map.fields.data() + rows[y] * static_cast<size_t>(map.across);
    for (size_t x = 0; x < row.size(); ++x) {
      above[columns[x]][0] += (row[x] & decode::kBlackCell) != 0 ? 1 : 0;
      above[columns[x]][1] += (row[x] & decode::kRedCell) != 0 ? 1 : 0;
    }
  }
  const std::vector<double> wide = cellsEach(columns, map.across);
  const std::vector<double> high = cellsEach(rows, map.down);
  for (size_t field = 0; field < map.fields.size(); ++field) {
    for (double& share : map.fields[field]) {
      share /= std::max(1.0, wide[field % wide.size()] * high[field / wide.size()]);
    }
  }
  return map;
}

class ToneRows : public PictureRows {
 public:
  ToneRows(const PictureSize& size, TonePair tones)
      : PictureRows(size, {}), tones_(std::move(tones)) {}

  void draw(int64_t top, std::span<uint32_t> pixels) override {
    const ToneMap& map = tones_.first;
    for (size_t i = 0; i < pixels.size(); ++i) {
      const int64_t y = top + static_cast<int64_t>(i / width());
      const auto x = static_cast<int64_t>(i % width());
      const int64_t field =
          y * map.down / size().height * map.across + x * map.across / size().width;
      pixels[i] = colourOf(static_cast<size_t>(field));
    }
  }

 private:
  // How much of white a colour takes away, by the part of it that shows.
  static void take(std::array<double, 3>& light, uint32_t colour, double part) {
    for (unsigned i = 0; i < 3; ++i) {
      const double channel = (colour >> (16 - 8 * i)) & 0xFFU;
      light.at(i) *= 1 - part * (255 - channel) / 255;
    }
  }

  [[nodiscard]] uint32_t colourOf(size_t field) const {
    constexpr double kFull = 0.25;
    const auto& first = tones_.first.fields[field];
    const auto& second = tones_.second.fields[field];
    double more = 0;
    double less = 0;
    for (size_t ink = 0; ink < first.size(); ++ink) {
      more += std::max(0.0, first.at(ink) - second.at(ink));
      less += std::max(0.0, second.at(ink) - first.at(ink));
    }
    const double other = std::min(more, less);
    std::array<double, 3> light{255, 255, 255};
    take(light, kPaleBlack, std::min(first[0], second[0]));
    take(light, kPaleRed, std::min(first[1], second[1]));
    take(light, kOnlyFirst, std::min(1.0, (more - other) / kFull));
    take(light, kOnlySecond, std::min(1.0, (less - other) / kFull));
    take(light, kOtherInk, std::min(1.0, other / kFull));
    uint32_t colour = 0;
    for (const double channel : light) {
      colour = colour << 8U | static_cast<uint32_t>(std::lround(channel));
    }
    return colour;
  }

  TonePair tones_;
};

}  // namespace

std::optional<TonePair> tonesOf(const PagePair& pages, const PaperView& view,
                                const std::array<decode::Model, 2>& models) {
  const decode::Paper paper = paperOfBoth(pages, view, models);
  const decode::PageCells first(pages.first, models[0], view.grid, paper);
  const decode::PageCells second(pages.second, models[1], view.grid, paper);
  if (first.height() > decode::kMostCountedCells / std::max<int64_t>(1, first.width())) {
    return std::nullopt;
  }
  const int64_t across = fieldsIn(paper.width);
  const int64_t down = fieldsIn(paper.length);
  return TonePair{mapOf(first, across, down), mapOf(second, across, down), paper};
}

void ToneChange::add(const ToneChange& other) {
  fields += other.fields;
  first += other.first;
  second += other.second;
  change += other.change;
  if (other.largest <= largest) return;
  largest = other.largest;
  x = other.x;
  y = other.y;
}

std::array<ToneChange, 2> changeOf(const TonePair& tones) {
  std::array<ToneChange, 2> changes;
  const ToneMap& map = tones.first;
  for (int64_t row = 0; row < map.down; ++row) {
    for (int64_t column = 0; column < map.across; ++column) {
      const auto field = static_cast<size_t>(row * map.across + column);
      for (size_t ink = 0; ink < changes.size(); ++ink) {
        const double first = map.fields[field].at(ink);
        const double second = tones.second.fields[field].at(ink);
        changes.at(ink).add(
            {1, first, second, std::abs(first - second), std::abs(first - second),
             decode::millimetres(tones.paper.width) * (double(column) + 0.5) / double(map.across),
             decode::millimetres(tones.paper.length) * (double(row) + 0.5) / double(map.down)});
      }
    }
  }
  return changes;
}

std::string textOf(const ToneChange& change, bool place) {
  const double fields = static_cast<double>(std::max<uint64_t>(1, change.fields));
  std::string text = decode::format(
      "%.2f %% and %.2f %% of the paper, fields differ by %.2f %% on average, %.2f %% at most",
      100 * change.first / fields, 100 * change.second / fields, 100 * change.change / fields,
      100 * change.largest);
  if (place && change.largest > 0) {
    text += decode::format(" (%.0f mm right, %.0f mm down)", change.x, change.y);
  }
  return text;
}

RowsDrawing toneRows(TonePair tones, double dpi) {
  const double perUnit = dpi / static_cast<double>(decode::kUnitsPerInch);
  const PictureSize size = wholePixels(static_cast<double>(tones.paper.width) * perUnit,
                                       static_cast<double>(tones.paper.length) * perUnit, dpi);
  if (auto problem = checkSize(size)) return *problem;
  return std::make_unique<ToneRows>(size, std::move(tones));
}

}  // namespace velka::view
