#include "CopyFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "OwnFile.h"
#include "PlainNames.h"

namespace velka {
namespace {

constexpr mode_t kOwnerOnly = 0600;

// Tells a copy that an earlier run of the job left (the print server was stopped, say)
// from any other file. Where the file system keeps no attributes no copy is replaced.
constexpr const char* kMark = "user.velka.pdfcopy";

// What the handler may touch: written only while signals are held back.
FixedText hiddenName;  // empty where the copy needs none
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

// A descriptor as a name that link() can follow.
FixedText nameOf(const UniqueFd& file) noexcept {
  return formatText("/proc/self/fd/%d", file.get());
}

// A file without a name goes with the process, however that ends. None where the file
// system has none, or where there is no way to give it a name later.
UniqueFd namelessCopy() noexcept {
  UniqueFd file(open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, kOwnerOnly));
  const bool usable = file && access(nameOf(file).text(), F_OK) == 0;
  return usable ? std::move(file) : UniqueFd();
}

UniqueFd hiddenCopy(const FixedText& name) noexcept {
  hiddenName = formatText("%s.XXXXXX", name.text());
  errno = ENAMETOOLONG;
  UniqueFd file(hiddenName.cut ? -1 : mkostemp(hiddenName.chars.data(), O_CLOEXEC));
  if (!file) hiddenName.chars[0] = '\0';
  return file;
}

// Replaces nothing and follows no link at the new name.
bool giveName(const UniqueFd& file, const char* name) noexcept {
  if (hiddenName.chars[0] != '\0') return link(hiddenName.text(), name) == 0;
  return linkat(AT_FDCWD, nameOf(file).text(), AT_FDCWD, name, AT_SYMLINK_FOLLOW) == 0;
}

}  // namespace

CopyFile::CopyFile(const char* jobId) noexcept
    : name_(formatText("%s%s.pdf", kJobFilePrefix.data(), jobId)) {
  const SignalsHeldBack held(kEndings);
  errno = ENAMETOOLONG;
  if (name_.cut) return;
  file_ = namelessCopy();
  if (!file_) file_ = hiddenCopy(name_);
  if (!file_) return;
  // The mask of the caller may have taken even the owner's rights.
  fchmod(file_.get(), kOwnerOnly);
  fsetxattr(file_.get(), kMark, "", 0, 0);
}

CopyFile::~CopyFile() {
  const SignalsHeldBack held(kEndings);
  removeNamed(hiddenName);
  removeNamed(publishedName);
}

bool CopyFile::publish() noexcept {
  const SignalsHeldBack held(kEndings);
  bool named = giveName(file_, name_.text());
  if (!named && errno == EEXIST) {
    const bool freed = isOlderCopy(name_.text()) && unlink(name_.text()) == 0;
    errno = EEXIST;
    named = freed && giveName(file_, name_.text());
  }
  if (!named) return false;
  publishedName = name_;
  removeNamed(hiddenName);
  return true;
}

void CopyFile::keep() noexcept {
  const SignalsHeldBack held(kEndings);
  publishedName.chars[0] = '\0';
  // The job is passed on: who ends it from here on ends the next filter, and a status of
  // ours that says otherwise would stand beside a copy that stays.
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  for (const int signal : kEndings) sigaction(signal, &ignore, nullptr);
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
