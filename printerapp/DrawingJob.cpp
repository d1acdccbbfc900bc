#include <charconv>
#include <cmath>
#include <string_view>

#include "PdfDrawing.h"

namespace velka::app {
namespace {

constexpr double kHundredthsPerInch = 2540;
constexpr int kMostNumber = 1'000'000'000;

std::string word(const char* name, double value) {
  return std::string(name) + "=" + std::to_string(std::lround(value));
}

bool readNumber(std::string_view text, int& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc{} && end == text.data() + text.size() && value >= 0 &&
         value <= kMostNumber;
}

bool readRange(std::string_view text, DrawingJob& job) {
  const size_t dash = text.find('-');
  PageRange range;
  if (dash == std::string_view::npos || !readNumber(text.substr(0, dash), range.first) ||
      !readNumber(text.substr(dash + 1), range.last))
    return false;
  job.pages.push_back(range);
  return true;
}

bool readWord(std::string_view name, std::string_view value, DrawingJob& job) {
  if (name == "copy") {
    job.copy = value;
    return true;
  }
  if (name == "pages") return readRange(value, job);
  int number = 0;
  if (!readNumber(value, number)) return false;
  if (name == "x") job.dpi.x = number;
  if (name == "y") job.dpi.y = number;
  if (name == "width") job.paper.width = number;
  if (name == "height") job.paper.height = number;
  if (name == "most") job.mostPages = number;
  if (name == "fidelity") job.wishes.fidelity = number != 0;
  if (name == "scaling" && number <= static_cast<int>(Scaling::None))
    job.wishes.scaling = static_cast<Scaling>(number);
  if (name == "turn" && number <= static_cast<int>(Turn::ReversePortrait))
    job.wishes.turn = static_cast<Turn>(number);
  return true;
}

}  // namespace

std::vector<std::string> wordsOf(const DrawingJob& job) {
  std::vector<std::string> words = {word("x", job.dpi.x),
                                    word("y", job.dpi.y),
                                    word("width", job.paper.width),
                                    word("height", job.paper.height),
                                    word("most", job.mostPages),
                                    word("fidelity", job.wishes.fidelity ? 1 : 0),
                                    word("scaling", static_cast<int>(job.wishes.scaling)),
                                    word("turn", static_cast<int>(job.wishes.turn))};
  for (const PageRange& range : job.pages)
    words.push_back("pages=" + std::to_string(range.first) + "-" + std::to_string(range.last));
  if (!job.copy.empty()) words.push_back("copy=" + job.copy);
  return words;
}

bool readWords(const std::vector<std::string>& words, DrawingJob& job) {
  for (const std::string_view word : words) {
    const size_t equals = word.find('=');
    if (equals == std::string_view::npos) return false;
    if (!readWord(word.substr(0, equals), word.substr(equals + 1), job)) return false;
  }
  const Dots dots = dotsOf(job);
  return dots.width > 0 && dots.height > 0;
}

Dots dotsOf(const DrawingJob& job) noexcept {
  const auto dots = [](double hundredths, int dpi) {
    const double wanted = std::floor(hundredths * dpi / kHundredthsPerInch);
    return wanted >= 1 && wanted <= kMostNumber ? static_cast<uint32_t>(wanted) : 0U;
  };
  return {dots(job.paper.width, job.dpi.x), dots(job.paper.height, job.dpi.y)};
}

}  // namespace velka::app
