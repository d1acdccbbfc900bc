#include "Spool.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace velka::app {
namespace {

std::string& folder() {
  static std::string name;
  return name;
}

}  // namespace

const std::string& spoolFolder() noexcept {
  return folder();
}

std::string usualSpoolFolder() {
  constexpr const char* kName = "/velka-printer-app";
  // Not below /var/lib, where systemd has a link to the service's own folder.
  if (geteuid() == 0) return std::string("/var/spool") + kName;
  // NOLINTBEGIN(concurrency-mt-unsafe): read before there are threads
  if (const char* state = std::getenv("XDG_STATE_HOME")) return std::string(state) + kName;
  const char* home = std::getenv("HOME");
  // NOLINTEND(concurrency-mt-unsafe)
  return std::string(home == nullptr ? "" : home) + "/.local/state" + kName;
}

std::string useSpoolFolder(const std::string& name) {
  std::error_code error;
  const std::filesystem::path path(name);
  if (path.has_parent_path()) std::filesystem::create_directories(path.parent_path(), error);
  if (mkdir(name.c_str(), 0700) != 0 && errno != EEXIST) return name + ": " + std::strerror(errno);
  struct stat status = {};
  if (lstat(name.c_str(), &status) != 0) return name + ": " + std::strerror(errno);
  if (!S_ISDIR(status.st_mode)) return name + " is no folder";
  if (status.st_uid != geteuid()) return name + " belongs to another user";
  if ((status.st_mode & 077) != 0 && chmod(name.c_str(), 0700) != 0)
    return name + ": " + std::strerror(errno);
  folder() = name;
  return {};
}

}  // namespace velka::app
