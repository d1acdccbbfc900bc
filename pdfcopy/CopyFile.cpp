#include "CopyFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "PlainNames.h"

namespace velka {
namespace {

constexpr mode_t kOwnerOnly = 0600;

// What the handler may touch: written only while SIGTERM is held back.
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

}  // namespace

SignalsHeldBack::SignalsHeldBack() noexcept {
  sigset_t terminate = {};
  sigemptyset(&terminate);
  sigaddset(&terminate, SIGTERM);
  sigprocmask(SIG_BLOCK, &terminate, &before_);
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
  // The mask of the caller may have taken even the owner's rights.
  if (file_) fchmod(file_.get(), kOwnerOnly);
}

CopyFile::~CopyFile() {
  const SignalsHeldBack held;
  removeNamed(hiddenName);
  removeNamed(publishedName);
}

bool CopyFile::publish() noexcept {
  const SignalsHeldBack held;
  // link() replaces nothing and follows no link at the new name.
  if (link(hiddenName.text(), name_.text()) != 0) return false;
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
  sigaction(SIGTERM, &end, nullptr);
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, nullptr);
  sigaction(SIGXFSZ, &ignore, nullptr);
}

void endWithJob(pid_t child) noexcept {
  childToEnd = child;
}

}  // namespace velka
