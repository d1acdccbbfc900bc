#include "LogConfig.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

namespace velka {
namespace {

enum class ValueKind { Text, Directory, Level, Flag, Size, Number };

struct KnownKey {
  std::string_view name;
  SettingCode code;
  ValueKind kind;
};

constexpr std::array<KnownKey, 10> kKeys = {{
    {"path", SettingCode::Path, ValueKind::Directory},
    {"name", SettingCode::Name, ValueKind::Text},
    {"level", SettingCode::Level, ValueKind::Level},
    {"display", SettingCode::Display, ValueKind::Flag},
    {"outfile", SettingCode::OutFile, ValueKind::Flag},
    {"monthdir", SettingCode::MonthDir, ValueKind::Flag},
    {"fileline", SettingCode::FileLine, ValueKind::Flag},
    {"enable", SettingCode::Enable, ValueKind::Flag},
    {"limitsize", SettingCode::LimitSize, ValueKind::Size},
    {"reserve", SettingCode::Reserve, ValueKind::Number},
}};

constexpr std::array<std::pair<std::string_view, std::int32_t>, 9> kLevelNames = {{
    {"all", LOG_LEVEL_TRACE},
    {"trace", LOG_LEVEL_TRACE},
    {"debug", LOG_LEVEL_DEBUG},
    {"info", LOG_LEVEL_INFO},
    {"warn", LOG_LEVEL_WARN},
    {"warning", LOG_LEVEL_WARN},
    {"error", LOG_LEVEL_ERROR},
    {"alarm", LOG_LEVEL_ALARM},
    {"fatal", LOG_LEVEL_FATAL},
}};

std::string_view trim(std::string_view text) {
  constexpr std::string_view kTrimmed = "\r\n\t ";
  const std::size_t first = text.find_first_not_of(kTrimmed);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kTrimmed) - first + 1);
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::optional<std::int64_t> parseNumber(std::string_view value) {
  std::int64_t number = 0;
  const char* const end = value.data() + value.size();
  const auto [stop, error] = std::from_chars(value.data(), end, number);
  return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> parseLevel(std::string_view value) {
  const std::string lower = lowerCase(value);
  for (const auto& [name, level] : kLevelNames) {
    if (name == lower) {
      return level;
    }
  }
  return std::nullopt;
}

std::int64_t parseFlag(std::string_view value) {
  return value == "0" || lowerCase(value) == "false" ? 0 : 1;
}

std::optional<std::int64_t> parseValue(ValueKind kind, std::string_view value) {
  switch (kind) {
    case ValueKind::Level:
      return parseLevel(value);
    case ValueKind::Flag:
      return parseFlag(value);
    case ValueKind::Size: {
      const auto size = parseNumber(value);
      return size.value_or(-1) < 0 ? std::nullopt : size;
    }
    default:
      return parseNumber(value);
  }
}

std::optional<SettingChange> changeOf(const KnownKey& key, std::string_view value) {
  if (key.kind == ValueKind::Text || key.kind == ValueKind::Directory) {
    if (value.empty()) {
      return std::nullopt;
    }
    std::string text(value);
    return SettingChange{key.code, 0,
                         key.kind == ValueKind::Directory ? withSeparator(std::move(text)) : text};
  }
  const std::optional<std::int64_t> number = parseValue(key.kind, value);
  return number ? std::optional(SettingChange{key.code, *number, {}}) : std::nullopt;
}

std::optional<SettingChange> parseSetting(std::string_view line) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string name = lowerCase(trim(line.substr(0, equals)));
  const auto* const key =
      std::find_if(kKeys.begin(), kKeys.end(), [&](const KnownKey& k) { return k.name == name; });
  return key == kKeys.end() ? std::nullopt : changeOf(*key, trim(line.substr(equals + 1)));
}

/// The key of a section line; empty when the line is broken.
std::string sectionKey(std::string_view line) {
  if (line.back() != ']') {
    return {};
  }
  const std::string_view key = trim(line.substr(1, line.size() - 2));
  return key == "main" ? "Main" : std::string(key);
}

class Parser {
 public:
  void line(std::string_view text) {
    if (text.empty() || text.front() == '#' || text.front() == ';') {
      return;
    }
    if (text.front() == '[') {
      startSection(sectionKey(text));
    } else if (inSection_) {
      if (auto change = parseSetting(text)) {
        sections_.back().changes.push_back(std::move(*change));
      }
    }
  }

  std::vector<ConfigSection> take() { return std::move(sections_); }

 private:
  void startSection(std::string key) {
    inSection_ = !key.empty();
    if (inSection_) {
      sections_.push_back({std::move(key), {}});
    }
  }

  std::vector<ConfigSection> sections_;
  bool inSection_ = false;
};

}  // namespace

std::vector<ConfigSection> parseConfig(std::string_view text) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) {
    text.remove_prefix(kByteOrderMark.size());
  }
  Parser parser;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    parser.line(trim(text.substr(0, end + 1)));
    text.remove_prefix(end + 1);
  }
  return parser.take();
}

}  // namespace velka
