#include "Version.h"

#include <cstdio>

namespace velka {

std::string_view version() noexcept {
  return VELKA_VERSION;
}

std::string versionText(std::string_view program) {
  return std::string(program).append(" (Velka) ").append(version()).append("\n");
}

bool answersVersion(int argc, const char* const argv[], std::string_view program) {
  if (argc != 2 || std::string_view(argv[1]) != "--version") return false;
  std::fputs(versionText(program).c_str(), stdout);
  return true;
}

}  // namespace velka
