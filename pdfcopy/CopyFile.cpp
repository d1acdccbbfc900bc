#include "CopyFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "PlainNames.h"

namespace velka {
namespace {

constexpr mode_t kOwnerOnly = 0600;

// Tells a copy that an earlier run of the job left (the print server was stopped, say)
// from any other file. Where the file system keeps no attributes no copy is replaced.
constexpr const char* kMark = "user.velka.pdfcopy";

constexpr std::array<int, 3> kEndings = {SIGTERM, SIGINT, SIGHUP};

// What the handler may touch: written only while signals are held back.
FixedText hiddenName;
FixedText publishedName;
volatile pid_t childToEnd = 0;

void removeNamed(FixedText& name) noexcept {
  if (name.chars[0] != '\0') unlink(name.text());
  name.chars[0] = '\0';
}

extern "C" void endAtOnce(int /*signal*/) {
  if (childToEnd > 0) kill(childToEnd, SIGTERM);
  removeNamed(hiddenName);
  removeNamed(publishedName);
  _exit(1);
}

bool isOlderCopy(const char* name) noexcept {
  const UniqueFd file = openOwnFile(name);
  return file && fgetxattr(file.get(), kMark, nullptr, 0) >= 0;
}

}  // namespace

SignalsHeldBack::SignalsHeldBack() noexcept {
  sigset_t endings = {};
  sigemptyset(&endings);
  for (const int signal : kEndings) sigaddset(&endings, signal);
  sigprocmask(SIG_BLOCK, &endings, &before_);
}

SignalsHeldBack::~SignalsHeldBack() {
  sigprocmask(SIG_SETMASK, &before_, nullptr);
}

CopyFile::CopyFile(const char* jobId) noexcept
    : name_(formatText("%s%s.pdf", kJobFilePrefix.data(), jobId)) {
  const SignalsHeldBack held;
  hiddenName = formatText("%s.XXXXXX", name_.text());
  errno = ENAMETOOLONG;
  if (!hiddenName.cut) file_ = UniqueFd(mkostemp(hiddenName.chars.data(), O_CLOEXEC));
  if (!file_) hiddenName.chars[0] = '\0';
  if (!file_) return;
  // The mask of the caller may have taken even the owner's rights.
  fchmod(file_.get(), kOwnerOnly);
  fsetxattr(file_.get(), kMark, "", 0, 0);
}

CopyFile::~CopyFile() {
  const SignalsHeldBack held;
  removeNamed(hiddenName);
  removeNamed(publishedName);
}

bool CopyFile::publish() noexcept {
  const SignalsHeldBack held;
  // link() replaces nothing and follows no link at the new name.
  const bool linked = link(hiddenName.text(), name_.text()) == 0;
  if (!linked) {
    if (errno != EEXIST) return false;
    const bool replaced =
        isOlderCopy(name_.text()) && std::rename(hiddenName.text(), name_.text()) == 0;
    errno = EEXIST;
    if (!replaced) return false;
  }
  publishedName = name_;
  removeNamed(hiddenName);
  return true;
}

void CopyFile::keep() noexcept {
  const SignalsHeldBack held;
  publishedName.chars[0] = '\0';
}

void installCopySignals() noexcept {
  struct sigaction end = {};
  end.sa_handler = endAtOnce;
  for (const int signal : kEndings) sigaction(signal, &end, nullptr);
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, nullptr);
  sigaction(SIGXFSZ, &ignore, nullptr);
  // Ignored, as some callers leave it, it would take the converters' status away.
  struct sigaction usual = {};
  usual.sa_handler = SIG_DFL;
  sigaction(SIGCHLD, &usual, nullptr);
}

void endWithJob(pid_t child) noexcept {
  childToEnd = child;
}

}  // namespace velka
