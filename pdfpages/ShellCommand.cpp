#include "ShellCommand.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "OwnFile.h"

namespace velka {
namespace {

// Puts /dev/null in the place of the standard descriptors while it lives.
class StandardDescriptorsAside {
 public:
  StandardDescriptorsAside() noexcept {
    const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
    int fd = 0;
    for (UniqueFd& saved : saved_) {
      saved = UniqueFd(fcntl(fd, F_DUPFD_CLOEXEC, kCount));
      if (saved && null) dup2(null.get(), fd);
      ++fd;
    }
  }
  ~StandardDescriptorsAside() {
    int fd = 0;
    for (const UniqueFd& saved : saved_) {
      if (saved) dup2(saved.get(), fd);
      ++fd;
    }
  }
  StandardDescriptorsAside(const StandardDescriptorsAside&) = delete;
  StandardDescriptorsAside& operator=(const StandardDescriptorsAside&) = delete;

 private:
  static constexpr int kCount = 3;
  std::array<UniqueFd, kCount> saved_;
};

struct PipeCloser {
  void operator()(std::FILE* pipe) const noexcept { pclose(pipe); }
};

}  // namespace

int runShell(const char* command) noexcept {
  const StandardDescriptorsAside aside;
  return std::system(command);  // NOLINT(concurrency-mt-unsafe): one thread starts commands
}

std::string outputOfShell(const char* command, size_t most) {
  const StandardDescriptorsAside aside;
  const std::unique_ptr<std::FILE, PipeCloser> pipe(popen(command, "re"));
  if (pipe == nullptr) return {};
  std::string output(most, '\0');
  output.resize(std::fread(output.data(), 1, most, pipe.get()));
  return output;
}

}  // namespace velka
