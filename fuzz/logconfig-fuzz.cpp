// Any text as the configuration of the loggers. What it sets stays within its bounds, and
// a text in other line ends, or behind a byte order mark, means the same.
#include "Input.h"
#include "LogConfig.h"
#include "LogPath.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

bool sameChanges(const ConfigSection& a, const ConfigSection& b) {
  return std::equal(a.changes.begin(), a.changes.end(), b.changes.begin(), b.changes.end(),
                    [](const SettingChange& x, const SettingChange& y) {
                      return x.code == y.code && x.number == y.number && x.text == y.text;
                    });
}

bool same(const std::vector<ConfigSection>& a, const std::vector<ConfigSection>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const ConfigSection& x, const ConfigSection& y) {
                      return x.key == y.key && sameChanges(x, y);
                    });
}

std::string withReturns(const std::string& text) {
  std::string changed;
  for (const char c : text) changed += c == '\n' ? std::string("\r\n") : std::string(1, c);
  return changed;
}

void apply(const ConfigSection& section, std::int64_t time) {
  LoggerSettings settings;
  for (const SettingChange& change : section.changes) {
    require(change.code != SettingCode::None);
    if (change.code == SettingCode::Path)
      require(change.text.ends_with('/') || change.text.ends_with('\\'));
    if (change.code == SettingCode::Name) require(!change.text.empty());
    applyChange(settings, change);
  }
  require(settings.level >= LOG_LEVEL_TRACE && settings.level <= LOG_LEVEL_FATAL);
  require(settings.reserve >= 0);
  require(directoryFor(settings, localDayOf(time)).starts_with(settings.path));
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const auto time = input.number<std::int64_t>();
  const std::string text = input.rest();
  const auto sections = parseConfig(text);
  for (const ConfigSection& section : sections) {
    require(!section.key.empty());
    apply(section, time);
  }
  require(same(parseConfig(withReturns(text)), sections));
  if (!text.starts_with("\xEF\xBB\xBF"))
    require(same(parseConfig("\xEF\xBB\xBF" + text), sections));
  return 0;
}
