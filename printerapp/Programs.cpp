#include "Programs.h"

#include <unistd.h>

#include <filesystem>

namespace velka::app {

namespace fs = std::filesystem;

std::string ownProgram() {
  std::error_code error;
  return fs::read_symlink("/proc/self/exe", error);
}

std::string findFilter() {
  const fs::path here = fs::path(ownProgram()).parent_path();
  for (const fs::path& place : {here / "rastovelka", here / "../filter/rastovelka",
                                here / VELKA_FILTERS_FROM_BIN / "rastovelka",
                                fs::path(VELKA_SYSTEM_FILTERS) / "rastovelka"}) {
    if (access(place.c_str(), X_OK) == 0) return place.lexically_normal();
  }
  return {};
}

}  // namespace velka::app
