// Log lines of any time, level, thread, text and source. They end within their record,
// and the date reads as the calendar has it.
#include <array>
#include <memory>

#include "Input.h"
#include "LogLine.h"
#include "LogPath.h"
#include "log4z.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

void number(Input& input) {
  std::array<char, kNumberRoom> scratch{};
  const auto value = input.number<uint64_t>();
  const auto digits = static_cast<size_t>(input.below(80));
  const std::string_view text = formatNumber(value, digits, scratch);
  const std::string plain = std::to_string(value);
  const size_t wanted = std::max(plain.size(), std::min(digits, scratch.size()));
  require(text == std::string(wanted - plain.size(), '0') + plain);
}

void line(Input& input) {
  auto record = std::make_unique<LogData>();
  record->time = input.number<std::int64_t>();
  record->milliseconds = input.number<uint32_t>();
  record->threadId = input.number<uint32_t>();
  record->level = input.number<std::int32_t>();
  const LocalDay day = localDayOf(record->time);
  // A kept day serves whatever lies within it.
  const std::int64_t kept = cachedLocalDay(record->time).midnight;
  require(kept == day.midnight || isWithinDay(record->time, kept));
  writeHeader(*record, day);
  require(record->contentLen > 0 && record->contentLen < 200);
  const int source = input.number<int>();
  // Repeated, so that lines get longer than their records from short inputs.
  const int times = 1 + input.below(600);
  const std::string file = input.text(input.byte());
  const std::string text = input.rest();
  for (int i = 0; i < times; ++i) appendMessage(*record, "%s", text.c_str());
  appendSource(*record, file, source);
  require(record->contentLen <= LOG_CONTENT_SIZE);
  terminateLine(*record);
  require(record->contentLen >= 2 && record->contentLen < LOG_CONTENT_SIZE);
  const auto end = static_cast<size_t>(record->contentLen);
  require(std::memcmp(record->content + end - 2, "\r\n", 3) == 0);
  require(baseName(file).find_first_of("/\\") == std::string_view::npos);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  number(input);
  line(input);
  return 0;
}
