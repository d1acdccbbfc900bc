#include "Files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

namespace velka::view {
namespace {

namespace fs = std::filesystem;

constexpr std::initializer_list<int> kHeld{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

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

bool isIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Names that stand for open files and devices, whatever they lead to.
bool isOfTheSystem(const std::string& name) {
  return name.starts_with("/dev/") || name.starts_with("/proc/");
}

// Where a name leads, its links followed one by one: one of the system's on the way
// must not be followed to the file behind it. None where they turn in a circle.
std::optional<std::string> targetOf(const std::string& name) {
  constexpr int kMostLinks = 40;
  fs::path path = name;
  for (int link = 0; link < kMostLinks; ++link) {
    std::error_code error;
    const fs::path folder = fs::canonical(path.has_parent_path() ? path.parent_path() : ".", error);
    if (error) return path.string();
    const fs::path exact = folder / path.filename();
    if (isOfTheSystem(exact)) return exact.string();
    const fs::path next = fs::read_symlink(exact, error);
    if (error) return link == 0 ? name : exact.string();
    path = folder / next;
  }
  errno = ELOOP;
  return std::nullopt;
}

bool replaceable(const std::string& name) {
  struct stat there {};
  return !isOfTheSystem(name) && (stat(name.c_str(), &there) != 0 || S_ISREG(there.st_mode));
}

}  // namespace

SignalsHeld::SignalsHeld() : SignalsHeldBack(kHeld) {}

bool SignalsHeld::pending() {
  sigset_t set;
  sigpending(&set);
  return std::ranges::any_of(
      kHeld, [&](int signal) { return sigismember(&set, signal) == 1 && !isIgnored(signal); });
}

std::string systemTrouble(const std::string& name) {
  const char* reason = std::strerror(errno);  // NOLINT(concurrency-mt-unsafe): one thread
  return name + ": " + reason;
}

Problem readFile(const std::string& name, std::vector<uint8_t>& bytes, size_t most) {
  const std::string shown = shownName(name, "standard input");
  const std::unique_ptr<std::FILE, Close> file(name == "-" ? stdin
                                                           : std::fopen(name.c_str(), "rb"));
  std::array<uint8_t, 65536> chunk{};
  size_t got = 0;
  while (file && (got = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0) {
    if (got > most - bytes.size()) {
      return shown + ": more than " + std::to_string(most >> 20U) + " MiB, too much to read";
    }
    bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(got));
  }
  if (file && std::ferror(file.get()) == 0) return std::nullopt;
  return systemTrouble(shown);
}

NewFile::NewFile(std::string name) : name_(std::move(name)) {}

NewFile::~NewFile() {
  if (file_ != nullptr && file_ != stdout) (void)std::fclose(file_);
  if (!working_.empty()) (void)unlink(working_.c_str());
}

Problem NewFile::trouble() const {
  return systemTrouble(shownName(name_, "standard output"));
}

Problem NewFile::open() {
  if (name_ == "-") {
    file_ = stdout;
    return std::nullopt;
  }
  const auto target = targetOf(name_);
  if (!target) return trouble();
  target_ = *target;
  return replaceable(target_) ? openBeside() : openAsItIs(target_);
}

Problem NewFile::openAsItIs(const std::string& name) {
  file_ = std::fopen(name.c_str(), "wb");
  return file_ != nullptr ? std::nullopt : trouble();
}

Problem NewFile::openBeside() {
  held_.emplace();
  working_ = target_ + ".XXXXXX";
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
  if (!working_.empty() && std::rename(working_.c_str(), target_.c_str()) != 0) return trouble();
  working_.clear();
  held_.reset();
  return std::nullopt;
}

Problem writeFile(const std::string& name, std::span<const uint8_t> bytes) {
  NewFile file(name);
  if (auto problem = file.open()) return problem;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.file()) != bytes.size()) {
    return systemTrouble(shownName(name, "standard output"));
  }
  return file.keep();
}

}  // namespace velka::view
