#include "LogPath.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>

#include "SafeFile.h"

namespace velka {

std::string directoryFor(const LoggerSettings& settings, const LocalDay& day) {
  if (!settings.monthdir) {
    return settings.path;
  }
  std::array<char, 32> month{};
  std::snprintf(month.data(), month.size(), "%04d_%02d/", day.date.tm_year + 1900,
                day.date.tm_mon + 1);
  return settings.path + month.data();
}

void createDirectories(const std::string& path) {
  constexpr mode_t kMode = 0777;
  for (std::size_t end = path.find('/'); end != std::string::npos; end = path.find('/', end + 1)) {
    if (end > 0) {
      mkdir(path.substr(0, end).c_str(), kMode);
    }
  }
}

void updateHistory(FileHistory& history, std::int64_t now, std::int64_t oldest,
                   const std::string& name) {
  if (history.size() >= 2) {
    // The age counts from the first use, so this may delete the current file.
    while (!history.empty() && history.front().first < oldest) {
      std::remove(history.front().second.c_str());
      history.pop_front();
    }
  }
  if (history.empty() || history.back().second != name) {
    history.emplace_back(now, name);
  }
}

std::string processName() {
  std::array<char, 32> path{};
  std::snprintf(path.data(), path.size(), "/proc/%d/cmdline", getpid());
  std::array<char, 4096> arguments{};
  const UniqueFile file = openRegularForReading(path.data());
  if (file) {
    [[maybe_unused]] const std::size_t count =
        std::fread(arguments.data(), 1, arguments.size() - 1, file.get());
  }
  const std::string_view program = baseName(arguments.data());
  return program.empty() ? "velka" : std::string(program);
}

}  // namespace velka
