// From a logging statement to the file: the record, the line, the queue.
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "LogLine.h"
#include "LogPath.h"
#include "LogerManager.h"
#include "NoThrow.h"

using velka::noThrow;
using velka::ScopedLock;

namespace {

std::size_t contentBytes(const LogData& data) noexcept {
  return static_cast<std::size_t>(std::clamp(data.contentLen, 0, LOG_CONTENT_SIZE));
}

velka::SettingChange changeIn(const LogData& data) {
  const char* const end = data.content + contentBytes(data);
  const std::string text(data.content, std::find(data.content, end, '\0'));
  return {static_cast<velka::SettingCode>(data.type), data.typeValue, text};
}

/// Whether a line of that time goes on in the logger's file as it is. If it
/// does not, because of the day or the size, the roll is counted; the file's
/// name stays the same all the same, and the file grows on.
bool fitsFile(LoggerInfo& logger, std::uint32_t limitMebibytes, std::int64_t time) noexcept {
  if (!velka::isWithinDay(time, logger.fileDay)) {
    logger.rollIndex = 0;
    return false;
  }
  if ((std::uint64_t{limitMebibytes} << 20U) >= logger.writtenBytes) {
    return true;
  }
  ++logger.rollIndex;
  return false;
}

}  // namespace

std::uint64_t LogerManager::getStatusTotalWriteCount() noexcept {
  return writeCount_;
}
std::uint64_t LogerManager::getStatusTotalWriteBytes() noexcept {
  return writeBytes_;
}
std::uint64_t LogerManager::getStatusTotalPushQueue() noexcept {
  return queue_.pushed();
}
std::uint64_t LogerManager::getStatusTotalPopQueue() noexcept {
  return queue_.popped();
}

void LogerManager::showColorText(const char* /*text*/, std::int32_t /*level*/) noexcept {}

std::optional<LogerManager::LineRules> LogerManager::rulesFor(std::int32_t id,
                                                              std::int32_t level) noexcept {
  const ScopedLock hold(settingsLock_);
  if (id < 0 || id > highestId_) {
    return std::nullopt;
  }
  const LoggerInfo& logger = loggers_[static_cast<std::size_t>(id)];
  if (!logger.enable || level < logger.level) {
    return std::nullopt;
  }
  return LineRules{logger.outfile, logger.fileline};
}

void LogerManager::holdBack() {
  const auto recount = [this] {
    const ScopedLock hold(mainLock_);
    return queue_.size();
  };
  const auto sleepMs = [](std::size_t ms) { usleep(static_cast<useconds_t>(ms) * 1000); };
  velka::applyBackPressure(queue_.size(), std::rand, recount, sleepMs);
}

bool LogerManager::prePushLog(std::int32_t id, std::int32_t level) noexcept {
  if (!running_ || !rulesFor(id, level)) {
    return false;
  }
  holdBack();
  return true;
}

LogData* LogerManager::makeLogData(std::int32_t id, std::int32_t level) noexcept {
  LogData* const data = pool_.take();
  data->loggerId = id;
  data->level = level;
  data->type = 0;
  data->typeValue = 0;
  timeval now{};
  gettimeofday(&now, nullptr);
  data->time = now.tv_sec;
  data->milliseconds = static_cast<std::uint32_t>(now.tv_usec / 1000);
  data->threadId = static_cast<std::uint32_t>(syscall(SYS_gettid));
  velka::writeHeader(*data, velka::cachedLocalDay(data->time));
  return data;
}

void LogerManager::freeLogData(LogData* data) noexcept {
  pool_.giveBack(data);
}

bool LogerManager::pushLog(LogData* data, const char* file, std::int32_t line) noexcept {
  if (data == nullptr) {
    return false;
  }
  const bool accepted = noThrow([&] { return acceptLine(*data, file, line); });
  freeLogData(data);
  return accepted;
}

bool LogerManager::acceptLine(LogData& data, const char* file, std::int32_t line) {
  const std::optional<LineRules> rules = rulesFor(data.loggerId, data.level);
  if (!running_ || !rules) {
    return false;
  }
  if (rules->fileline && file != nullptr) {
    velka::appendSource(data, file, line);
  }
  velka::terminateLine(data);
  if (rules->outfile) {
    const ScopedLock hold(mainLock_);
    writeLine(data, true);
  }
  return true;
}

bool LogerManager::writeLine(const LogData& data, bool closeAfter) {
  if (!openLogger(&data)) {
    return false;
  }
  LoggerInfo& logger = loggers_[static_cast<std::size_t>(data.loggerId)];
  const std::size_t length = contentBytes(data);
  const bool whole = length == 0 || logger.handle.write(data.content, length) == length;
  logger.writtenBytes += static_cast<std::uint32_t>(length);
  // Opened and closed for every line: that it is on disk is worth the time.
  if (!whole || closeAfter) {
    logger.handle.close();
  }
  ++writeCount_;
  writeBytes_ += length;
  return true;
}

bool LogerManager::openLogger(const LogData* data) {
  if (data == nullptr) {
    return false;
  }
  const std::optional<velka::LoggerSettings> settings = settingsOf(data->loggerId);
  if (!settings || !settings->enable || !settings->outfile || data->level < settings->level) {
    return false;
  }
  LoggerInfo& logger = loggers_[static_cast<std::size_t>(data->loggerId)];
  if (fitsFile(logger, settings->limitsize, data->time) && logger.handle.isOpen()) {
    return true;
  }
  logger.handle.close();
  return openFile(logger, *settings, data->time);
}

bool LogerManager::openFile(LoggerInfo& logger, const velka::LoggerSettings& settings,
                            std::int64_t time) {
  const velka::LocalDay day = velka::localDayOf(time);
  logger.fileTime = time;
  logger.writtenBytes = 0;
  logger.fileDay = day.midnight;
  const std::string directory = velka::directoryFor(settings, day);
  velka::createDirectories(directory);
  const std::string fileName = directory + settings.name + ".log";
  if (!logger.handle.openForAppending(fileName.c_str())) {
    return giveUpFile(logger, fileName);
  }
  const long length = logger.handle.length();
  if (length < 0) {
    return giveUpFile(logger, fileName);
  }
  logger.writtenBytes = static_cast<std::uint32_t>(length);
  if (settings.reserve > 0) {
    const std::int64_t now = std::time(nullptr);
    velka::updateHistory(logger.history, now, now - settings.reserve, fileName);
  }
  return true;
}

bool LogerManager::giveUpFile(LoggerInfo& logger, const std::string& fileName) {
  logger.handle.close();
  std::array<char, 500> text{};
  std::snprintf(text.data(), text.size(), "log4z: can not open log file %s. \r\n",
                fileName.c_str());
  showColorText(text.data(), LOG_LEVEL_FATAL);
  const ScopedLock hold(settingsLock_);
  logger.outfile = false;
  return false;
}

bool LogerManager::drainOne(UnflushedWrites& unflushed) {
  LogData* record = nullptr;
  {
    const ScopedLock hold(mainLock_);
    record = queue_.pop();
  }
  if (record == nullptr) {
    return false;
  }
  velka::attempt([&] { handleRecord(*record, unflushed); });
  freeLogData(record);
  return true;
}

void LogerManager::handleRecord(const LogData& data, UnflushedWrites& unflushed) {
  if (data.type != static_cast<std::int32_t>(velka::SettingCode::None)) {
    changeSetting(data.loggerId, changeIn(data));
    return;
  }
  const ScopedLock hold(mainLock_);
  if (writeLine(data, false)) {
    ++unflushed[static_cast<std::size_t>(data.loggerId)];
  }
}

void LogerManager::tendFiles(UnflushedWrites& unflushed) {
  const ScopedLock hold(mainLock_);
  for (std::int32_t id = 0; id <= highestId(); ++id) {
    const auto index = static_cast<std::size_t>(id);
    Log4zFileHandler& file = loggers_[index].handle;
    if (!isLoggerEnable(id)) {
      file.close();
    }
    if (unflushed[index] > 0) {
      file.flush();
      unflushed[index] = 0;
    }
  }
}

void LogerManager::closeFiles() noexcept {
  const ScopedLock hold(mainLock_);
  for (LoggerInfo& logger : loggers_) {
    logger.handle.close();
  }
}
