#include "Files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace velka::view {
namespace {

constexpr std::array<int, 3> kHeld{SIGINT, SIGTERM, SIGHUP};

struct Close {
  void operator()(std::FILE* file) const {
    if (file != stdin) (void)std::fclose(file);
  }
};

std::string shownName(const std::string& name, const char* standard) {
  return name == "-" ? standard : name;
}

// A file of mkstemp() is its owner's alone; give it what any new file gets.
void openToReaders(int descriptor) {
  const mode_t mask = umask(0);
  umask(mask);
  (void)fchmod(descriptor, 0666 & ~mask);
}

}  // namespace

bool SignalsHeld::pending() {
  sigset_t set;
  sigpending(&set);
  return std::ranges::any_of(kHeld, [&](int signal) { return sigismember(&set, signal) == 1; });
}

SignalsHeld::SignalsHeld() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kHeld) sigaddset(&set, signal);
  (void)pthread_sigmask(SIG_BLOCK, &set, &before_);
}

SignalsHeld::~SignalsHeld() {
  (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

Problem readFile(const std::string& name, std::vector<uint8_t>& bytes) {
  const std::unique_ptr<std::FILE, Close> file(name == "-" ? stdin
                                                           : std::fopen(name.c_str(), "rb"));
  std::array<uint8_t, 65536> chunk{};
  size_t got = 0;
  while (file && (got = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0) {
    bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(got));
  }
  if (file && std::ferror(file.get()) == 0) return std::nullopt;
  return shownName(name, "standard input") + ": " + std::strerror(errno);
}

NewFile::NewFile(std::string name) : name_(std::move(name)) {}

NewFile::~NewFile() {
  if (file_ != nullptr && file_ != stdout) (void)std::fclose(file_);
  if (!working_.empty()) (void)unlink(working_.c_str());
}

Problem NewFile::trouble() const {
  return shownName(name_, "standard output") + ": " + std::strerror(errno);
}

Problem NewFile::open() {
  if (name_ == "-") {
    file_ = stdout;
    return std::nullopt;
  }
  struct stat there {};
  if (stat(name_.c_str(), &there) == 0 && !S_ISREG(there.st_mode)) {
    // A device or FIFO is written to as it is; renaming would replace it.
    file_ = std::fopen(name_.c_str(), "wb");
    return file_ != nullptr ? std::nullopt : trouble();
  }
  working_ = name_ + ".XXXXXX";
  const int descriptor = mkstemp(working_.data());
  if (descriptor < 0) {
    working_.clear();
    return trouble();
  }
  openToReaders(descriptor);
  file_ = fdopen(descriptor, "wb");
  if (file_ != nullptr) return std::nullopt;
  (void)close(descriptor);
  return trouble();
}

Problem NewFile::keep() {
  const bool written = std::fflush(file_) == 0 && std::ferror(file_) == 0;
  if (!written) return trouble();
  if (file_ != stdout) {
    const int closed = std::fclose(std::exchange(file_, nullptr));
    if (closed != 0) return trouble();
  }
  if (!working_.empty() && std::rename(working_.c_str(), name_.c_str()) != 0) return trouble();
  working_.clear();
  return std::nullopt;
}

}  // namespace velka::view
