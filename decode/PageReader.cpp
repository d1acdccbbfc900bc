#include "PageReader.h"

#include <numeric>

namespace velka::decode {
namespace {

bool movesPaper(CommandKind kind) {
  return kind == CommandKind::PaperMove || kind == CommandKind::PaperAdvance;
}

}  // namespace

std::optional<Page> PageReader::next() {
  if (done_) return std::nullopt;
  Page page;
  bool first = true;
  while (const auto command = reader_.next()) {
    if (first) page.offset = command->offset;
    first = false;
    if (command->kind == CommandKind::BitImage && !command->data.empty()) {
      page.blocks.push_back({carriage_.x, carriage_.y, command->mode, carriage_.colour,
                             command->data, command->offset});
    }
    page.lines = carriage_.lines;
    page.headY = carriage_.y;
    carriage_.apply(*command);
    if (movesPaper(command->kind)) page.paperStep = std::gcd(page.paperStep, carriage_.y);
    end_.note(command->kind);
    if (command->kind == CommandKind::FormFeed) {
      page.ended = true;
      return page;
    }
  }
  return last(std::move(page));
}

std::optional<Page> PageReader::last(Page page) {
  done_ = true;
  fault_ = reader_.fault() ? reader_.fault() : end_.missing(size_);
  page.lines = carriage_.lines;
  page.headY = carriage_.y;
  if (page.blocks.empty()) return std::nullopt;
  return page;
}

}  // namespace velka::decode
