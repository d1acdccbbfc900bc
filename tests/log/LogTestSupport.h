// Helpers of the log tests: folders, files, and the way into a manager.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "log4z.h"
#include "support/Eventually.h"

namespace logtest {

/// Where no stream can be set to, of SEEK_SET and its like; none at first.
inline thread_local int unseekable = -1;

}  // namespace logtest

namespace velka {

struct LogerManagerAccess {
  static LoggerInfo& logger(LogerManager& manager, std::size_t id = 0) {
    return manager.loggers_[id];
  }
  static LockHelper& mainLock(LogerManager& manager) { return manager.mainLock_; }
  static std::size_t idleRecords(LogerManager& manager) { return manager.pool_.idle(); }
  static void enqueue(LogerManager& manager, LogData* record) {
    const ScopedLock hold(manager.mainLock_);
    manager.queue_.push(record);
  }
  static LogData* dequeue(LogerManager& manager) {
    const ScopedLock hold(manager.mainLock_);
    return manager.queue_.pop();
  }
  static void holdBack(LogerManager& manager) { manager.holdBack(); }
  static void autoUpdate(LogerManager& manager, std::int64_t& lastCheck) {
    manager.autoUpdate(lastCheck);
  }
  static bool writeQueued(LogerManager& manager, LogData* record) {
    bool written = false;
    {
      const ScopedLock hold(manager.mainLock_);
      written = manager.writeLine(*record, false);
    }
    manager.pool_.giveBack(record);
    return written;
  }
};

}  // namespace velka

namespace logtest {

using Access = velka::LogerManagerAccess;
using velka::testing::eventually;

/// A folder of its own, gone at the end of the test.
class TempFolder {
 public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "velka-log-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
      std::abort();
    }
    path_ = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

inline std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// The lines of a text; each must end in CR LF, which is taken off.
inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t end = text.find("\r\n", start);
    if (end == std::string::npos) {
      ADD_FAILURE() << "no CR LF behind: " << text.substr(start);
      break;
    }
    lines.push_back(text.substr(start, end - start));
    start = end + 2;
  }
  return lines;
}

/// `text` with a number behind it.
inline std::string numbered(std::string text, std::size_t number) {
  text += std::to_string(number);
  return text;
}

/// Sets the process's time zone for a scope.
class ZoneScope {
 public:
  explicit ZoneScope(const char* zone) {
    if (const char* former = std::getenv("TZ")) {
      former_ = std::make_unique<std::string>(former);
    }
    setenv("TZ", zone, 1);
    tzset();
  }
  ~ZoneScope() {
    former_ ? setenv("TZ", former_->c_str(), 1) : unsetenv("TZ");
    tzset();
  }
  ZoneScope(const ZoneScope&) = delete;
  ZoneScope& operator=(const ZoneScope&) = delete;

 private:
  std::unique_ptr<std::string> former_;
};

/// A record for calls that need no manager behind it.
inline std::unique_ptr<LogData> blankLine() {
  return std::make_unique<LogData>();
}

inline std::string_view contentOf(const LogData& line) {
  return {line.content, static_cast<std::size_t>(line.contentLen)};
}

/// A manager whose main logger writes `name`.log into `folder`.
inline void aimAt(LogerManager& manager, const TempFolder& folder, const char* name = "velka") {
  ASSERT_TRUE(manager.setLoggerPath(0, folder.path().c_str()));
  ASSERT_TRUE(manager.setLoggerName(0, name));
}

/// One line through the three operations; false when it is not accepted.
inline bool logText(LogerManager& manager, const std::string& text, std::int32_t id = 0,
                    std::int32_t level = LOG_LEVEL_DEBUG) {
  if (!manager.prePushLog(id, level)) {
    return false;
  }
  LogData* const line = manager.makeLogData(id, level);
  velka::appendMessage(*line, "%s", text.c_str());
  return manager.pushLog(line, "src/a.c", 7);
}

inline bool contains(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

}  // namespace logtest
