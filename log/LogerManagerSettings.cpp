// Loggers and their settings, from calls and from configuration texts.
#include <algorithm>

#include "LogerManager.h"
#include "NoThrow.h"

using velka::noThrow;
using velka::ScopedLock;
using velka::SettingChange;
using velka::SettingCode;

namespace {

std::optional<std::string> readConfigFile(const std::string& path) {
  Log4zFileHandler file;
  return file.openForReading(path.c_str()) ? file.readContent() : std::nullopt;
}

}  // namespace

std::int32_t LogerManager::highestId() noexcept {
  const ScopedLock hold(settingsLock_);
  return highestId_;
}

std::optional<velka::LoggerSettings> LogerManager::settingsOf(std::int32_t id) {
  const ScopedLock hold(settingsLock_);
  if (id < 0 || id > highestId_) {
    return std::nullopt;
  }
  return loggers_[static_cast<std::size_t>(id)];
}

bool LogerManager::changeSetting(std::int32_t id, const SettingChange& change) noexcept {
  return noThrow([&] {
    const ScopedLock hold(settingsLock_);
    if (id < 0 || id > highestId_ || change.text.size() >= LOG_CONTENT_SIZE) {
      return false;
    }
    velka::applyChange(loggers_[static_cast<std::size_t>(id)], change);
    return true;
  });
}

bool LogerManager::changeNumber(std::int32_t id, SettingCode code, std::int64_t number) noexcept {
  return changeSetting(id, SettingChange{code, number, {}});
}

bool LogerManager::enableLogger(std::int32_t id, bool enable) noexcept {
  return changeNumber(id, SettingCode::Enable, enable ? 1 : 0);
}

bool LogerManager::setLoggerName(std::int32_t id, const char* name) noexcept {
  if (name == nullptr || id < 0 || id > highestId()) {
    return false;
  }
  return *name == '\0' || noThrow([&] {
    return changeSetting(id, SettingChange{SettingCode::Name, 0, name});
  });
}

bool LogerManager::setLoggerPath(std::int32_t id, const char* path) noexcept {
  if (path == nullptr || id < 0 || id > highestId()) {
    return false;
  }
  return *path == '\0' || noThrow([&] {
    return changeSetting(id, SettingChange{SettingCode::Path, 0, velka::withSeparator(path)});
  });
}

bool LogerManager::setLoggerLevel(std::int32_t id, std::int32_t level) noexcept {
  return changeNumber(id, SettingCode::Level, level);
}

bool LogerManager::setLoggerFileLine(std::int32_t id, bool enable) noexcept {
  return changeNumber(id, SettingCode::FileLine, enable ? 1 : 0);
}

bool LogerManager::setLoggerDisplay(std::int32_t id, bool enable) noexcept {
  return changeNumber(id, SettingCode::Display, enable ? 1 : 0);
}

bool LogerManager::setLoggerOutFile(std::int32_t id, bool enable) noexcept {
  return changeNumber(id, SettingCode::OutFile, enable ? 1 : 0);
}

bool LogerManager::setLoggerLimitsize(std::int32_t id, std::uint32_t limitsize) noexcept {
  return changeNumber(id, SettingCode::LimitSize, limitsize);
}

bool LogerManager::setLoggerMonthdir(std::int32_t id, bool enable) noexcept {
  return changeNumber(id, SettingCode::MonthDir, enable ? 1 : 0);
}

bool LogerManager::setLoggerReserveTime(std::int32_t id, std::int64_t seconds) noexcept {
  return changeNumber(id, SettingCode::Reserve, seconds);
}

bool LogerManager::setAutoUpdate(std::int32_t seconds) noexcept {
  autoUpdateSeconds_ = seconds;
  return true;
}

bool LogerManager::isLoggerEnable(std::int32_t id) noexcept {
  const ScopedLock hold(settingsLock_);
  return id >= 0 && id <= highestId_ && loggers_[static_cast<std::size_t>(id)].enable;
}

std::uint32_t LogerManager::getStatusActiveLoggers() noexcept {
  const ScopedLock hold(settingsLock_);
  const auto count = std::count_if(loggers_.begin(), loggers_.begin() + highestId_ + 1,
                                   [](const LoggerInfo& logger) { return logger.enable; });
  return static_cast<std::uint32_t>(count);
}

std::optional<std::int32_t> LogerManager::knownId(const std::string& key) const {
  if (key == loggers_[LOGGER_MAIN_ID].key) {
    return LOGGER_MAIN_ID;
  }
  const auto known = ids_.find(key);
  return known == ids_.end() ? std::nullopt : std::optional(known->second);
}

std::int32_t LogerManager::idForKey(const std::string& key) {
  const ScopedLock hold(settingsLock_);
  if (const auto known = knownId(key)) {
    return *known;
  }
  if (key.empty() || highestId_ + 1 >= LOGGER_MAX) {
    return -1;
  }
  const std::int32_t id = highestId_ + 1;
  LoggerInfo& logger = loggers_[static_cast<std::size_t>(id)];
  logger.key = key;
  // Without a name of its own each would write to the same ".log".
  logger.name = key;
  ids_.emplace(key, id);
  highestId_ = id;
  return id;
}

std::int32_t LogerManager::createLogger(const char* key) noexcept {
  return key == nullptr ? -1 : noThrow([&] { return idForKey(key); }, -1);
}

std::int32_t LogerManager::findLogger(const char* key) noexcept {
  if (key == nullptr) {
    return -1;
  }
  const auto find = [&] {
    const ScopedLock hold(settingsLock_);
    return knownId(key).value_or(-1);
  };
  return noThrow(find, -1);
}

void LogerManager::applyConfig(const std::string& text, bool hot) {
  for (const velka::ConfigSection& section : velka::parseConfig(text)) {
    const std::int32_t id = idForKey(section.key);
    if (id < 0) {
      continue;
    }
    for (const SettingChange& change : section.changes) {
      if (hot) {
        changeSetting(id, change);
      } else {
        const ScopedLock hold(settingsLock_);
        velka::applyChange(loggers_[static_cast<std::size_t>(id)], change);
      }
    }
  }
}

bool LogerManager::config(const char* path) noexcept {
  if (path == nullptr || *path == '\0') {
    return false;
  }
  return noThrow([&] {
    const std::optional<std::string> text = readConfigFile(path);
    if (!text) {
      return false;
    }
    {
      const ScopedLock hold(settingsLock_);
      if (!configPath_.empty()) {
        return false;
      }
      configPath_ = path;
    }
    applyConfig(*text, false);
    return true;
  });
}

bool LogerManager::configFromString(const char* text) noexcept {
  return text != nullptr && noThrow([&] {
           applyConfig(text, false);
           return true;
         });
}

bool LogerManager::updateConfig() noexcept {
  return noThrow([&] {
    std::string path;
    {
      const ScopedLock hold(settingsLock_);
      path = configPath_;
    }
    const std::optional<std::string> text = path.empty() ? std::nullopt : readConfigFile(path);
    if (text) {
      applyConfig(*text, true);
    }
    return text.has_value();
  });
}
