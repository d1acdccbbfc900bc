// What the page counter and its report may hold, against a reading line by line.
#include <sstream>

#include "Input.h"
#include "PageCount.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

int digitsLineByLine(const std::string& report) {
  std::istringstream lines(report);
  int digits = 1;
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("Pages:", 0) != 0) continue;
    size_t at = 6;
    while (at < line.size() && line[at] == ' ') ++at;
    size_t end = at;
    while (end < line.size() && line[end] >= '0' && line[end] <= '9') ++end;
    digits = static_cast<int>(std::min<size_t>(std::max<size_t>(end - at, 1), 10));
  }
  return digits;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  require(digitsOfPagesLine(text) == digitsLineByLine(text));
  const auto digits = digitsOfPageCountFile(text);
  require(digits.has_value() == (text != "\n"));
  if (digits) require(text.empty() ? *digits == -1 : *digits >= 1 && *digits <= 10);
  return 0;
}
