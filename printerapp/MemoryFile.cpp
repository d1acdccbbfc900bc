#include "MemoryFile.h"

#include <sys/mman.h>
#include <unistd.h>

namespace velka::app {

UniqueFd fileOf(std::string_view text) noexcept {
  UniqueFd file(memfd_create("velka", MFD_CLOEXEC));
  while (file && !text.empty()) {
    const ssize_t n = write(file.get(), text.data(), text.size());
    if (n <= 0) return UniqueFd();
    text.remove_prefix(static_cast<size_t>(n));
  }
  return file;
}

}  // namespace velka::app
