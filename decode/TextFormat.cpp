#include "TextFormat.h"

#include <array>
#include <cstdarg>
#include <cstdio>

namespace velka::decode {

std::string format(const char* form, ...) {
  std::array<char, 501> text{};
  va_list arguments;
  va_start(arguments, form);
  (void)std::vsnprintf(text.data(), text.size(), form, arguments);
  va_end(arguments);
  return text.data();
}

}  // namespace velka::decode
