#include "FixedText.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace velka {

FixedText formatText(const char* format, ...) noexcept {
  FixedText result;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(result.chars.data(), result.chars.size(), format, arguments);
  va_end(arguments);
  if (length < 0) return {};
  result.cut = static_cast<size_t>(length) >= result.chars.size();
  return result;
}

void copyText(const FixedText& text, char* buffer) noexcept {
  std::memcpy(buffer, text.chars.data(), std::strlen(text.text()) + 1);
}

}  // namespace velka
