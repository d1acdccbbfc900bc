#include "PageWriter.h"

namespace velka::calibration {
namespace {

constexpr int kTitle = 36;

}  // namespace

int widthOf(std::string_view text) {
  return text.empty() ? 0 : static_cast<int>(text.size()) * letterPitch(kTextCell) - kTextCell;
}

void PageWriter::title(std::string_view text) {
  page_.addText(text, kLeft * scale_, row_ * scale_, kTitleCell * scale_, colour_);
  row_ += kTitle;
}

void PageWriter::line(std::string_view text) {
  this->text(text, kLeft, row_);
  row_ += kLine;
}

void PageWriter::text(std::string_view text, int left, int top) {
  page_.addText(text, left * scale_, top * scale_, kTextCell * scale_, colour_);
}

void PageWriter::label(std::string_view text, int middle, int top) {
  this->text(text, middle - widthOf(text) / 2, top);
}

void PageWriter::box(int left, int top, int width, int height, Colour colour) {
  page_.boxes.push_back({double(left) * scale_, double(top) * scale_, double(width) * scale_,
                         double(height) * scale_, colour});
}

}  // namespace velka::calibration
