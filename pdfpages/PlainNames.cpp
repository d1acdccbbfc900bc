#include "PlainNames.h"

#include <algorithm>

namespace velka {
namespace {

// Not isalnum(): the locale must not widen the set.
bool isPlain(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '_' || c == '-';
}

bool allPlain(std::string_view text) noexcept {
  return std::all_of(text.begin(), text.end(), isPlain);
}

}  // namespace

bool isPlainName(const char* id) noexcept {
  return id != nullptr && allPlain(id);
}

bool isPlainPath(const char* path) noexcept {
  if (path == nullptr || *path == '\0' || *path == '-') return false;
  const std::string_view text(path);
  return std::all_of(text.begin(), text.end(), [](char c) { return isPlain(c) || c == '/'; });
}

bool isRemovable(const char* path) noexcept {
  if (path == nullptr) return false;
  const std::string_view text(path);
  return !text.starts_with(kJobFilePrefix) || allPlain(text.substr(kJobFilePrefix.size()));
}

}  // namespace velka
