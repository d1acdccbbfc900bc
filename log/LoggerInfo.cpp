#include "LoggerInfo.h"

#include <algorithm>
#include <limits>

namespace velka {
namespace {

template <class Integer>
Integer clampTo(std::int64_t number) noexcept {
  using Limits = std::numeric_limits<Integer>;
  return static_cast<Integer>(
      std::clamp<std::int64_t>(number, std::int64_t{Limits::min()}, std::int64_t{Limits::max()}));
}

}  // namespace

void applyChange(LoggerSettings& settings, const SettingChange& change) {
  const bool flag = change.number != 0;
  switch (change.code) {
    case SettingCode::None:
      break;
    case SettingCode::Enable:
      settings.enable = flag;
      break;
    case SettingCode::Name:
      settings.name = change.text;
      break;
    case SettingCode::Path:
      settings.path = change.text;
      break;
    case SettingCode::Level:
      settings.level = clampTo<std::int32_t>(change.number);
      break;
    case SettingCode::FileLine:
      settings.fileline = flag;
      break;
    case SettingCode::Display:
      settings.display = flag;
      break;
    case SettingCode::OutFile:
      settings.outfile = flag;
      break;
    case SettingCode::LimitSize:
      settings.limitsize = clampTo<std::uint32_t>(change.number);
      break;
    case SettingCode::MonthDir:
      settings.monthdir = flag;
      break;
    case SettingCode::Reserve:
      settings.reserve = std::max<std::int64_t>(change.number, 0);
      break;
  }
}

std::string withSeparator(std::string path) {
  if (path.empty() || (path.back() != '/' && path.back() != '\\')) {
    path += '/';
  }
  return path;
}

}  // namespace velka
