// A library for LD_PRELOAD that fails the n-th call of a function, so that a test can
// see what becomes of a job.
//
//   VELKA_FAULT          FUNCTION:N:once|on:ERRNO|short - the N-th call since main() began
//                        fails, or it and all that follow. "short" has read and write take
//                        half of what they are asked for.
//   VELKA_FAULT_PROGRAM  the program that is failed, by its full path without links; the
//                        tools that it starts inherit the shim and run as ever.
//   VELKA_FAULT_REPORT   a file of sizeof(FaultReport) bytes that tells what was seen.
//
// Counting starts with main(): what libraries do while they are loaded is theirs. A child
// between fork() and exec() counts on. What the C library calls inside itself (streams,
// remove(), the clone of posix_spawn()) does not come by here, but for malloc and its like.
// open64 and the like count under the plain name, as does what fortified code calls; both
// forms of operator new count as _Znwm.
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>

#include "Forwarding.h"

using velka::testing::behind;
using velka::testing::failedWith;
using velka::testing::Function;
using velka::testing::judge;
using velka::testing::madeOr;
using velka::testing::plannedError;
using velka::testing::Verdict;

namespace {

// What is asked for where a transfer is cut short.
size_t halfOf(size_t size) noexcept {
  return size - size / 2;
}

template <typename Buffer>
ssize_t transferred(Function function, const void* caller, int fd, Buffer* bytes,
                    size_t size) noexcept {
  const Verdict verdict = judge(function, caller, size);
  if (verdict == Verdict::Fail) return failedWith<ssize_t>(-1);
  const auto next = reinterpret_cast<ssize_t (*)(int, Buffer*, size_t)>(behind(function));
  return next(fd, bytes, verdict == Verdict::Short ? halfOf(size) : size);
}

}  // namespace

// The mode that follows flags which may make a file.
#define MODE_BEHIND(flags)                         \
  mode_t mode = 0;                                 \
  if (((flags) & (O_CREAT | __O_TMPFILE)) != 0) {  \
    va_list rest;                                  \
    va_start(rest, flags);                         \
    mode = static_cast<mode_t>(va_arg(rest, int)); \
    va_end(rest);                                  \
  }

extern "C" {

FILE* fopen(const char* path, const char* mode) {
  return madeOr<FILE*>(nullptr, Function::FOpen, CALLER, path, mode);
}
FILE* fopen64(const char* path, const char* mode) __attribute__((alias("fopen")));
FILE* fdopen(int fd, const char* mode) noexcept {
  return madeOr<FILE*>(nullptr, Function::FDOpen, CALLER, fd, mode);
}
size_t fwrite(const void* bytes, size_t size, size_t count, FILE* file) {
  const Verdict verdict = judge(Function::FWrite, CALLER, size * count);
  if (verdict == Verdict::Fail) return failedWith<size_t>(0);
  const auto next =
      reinterpret_cast<size_t (*)(const void*, size_t, size_t, FILE*)>(behind(Function::FWrite));
  return next(bytes, size, verdict == Verdict::Short ? halfOf(count) : count, file);
}

int open(const char* path, int flags, ...) {
  MODE_BEHIND(flags)
  return madeOr(-1, Function::Open, CALLER, path, flags, mode);
}
int open64(const char* path, int flags, ...) __attribute__((alias("open")));
int __open_2(const char* path, int flags) {
  return madeOr(-1, Function::Open, CALLER, path, flags);
}
int __open64_2(const char* path, int flags) __attribute__((alias("__open_2")));
int openat(int folder, const char* path, int flags, ...) {
  MODE_BEHIND(flags)
  return madeOr(-1, Function::OpenAt, CALLER, folder, path, flags, mode);
}
int openat64(int folder, const char* path, int flags, ...) __attribute__((alias("openat")));

ssize_t read(int fd, void* bytes, size_t size) {
  return transferred(Function::Read, CALLER, fd, bytes, size);
}
ssize_t __read_chk(int fd, void* bytes, size_t size, size_t /*room*/) {
  return transferred(Function::Read, CALLER, fd, bytes, size);
}
ssize_t write(int fd, const void* bytes, size_t size) {
  return transferred(Function::Write, CALLER, fd, bytes, size);
}

int fsync(int fd) {
  return madeOr(-1, Function::FSync, CALLER, fd);
}
int fdatasync(int fd) {
  return madeOr(-1, Function::FDataSync, CALLER, fd);
}
// As the system does: the descriptor is gone, whatever close() says.
int close(int fd) {
  const Verdict verdict = judge(Function::Close, CALLER);
  const int result = reinterpret_cast<int (*)(int)>(behind(Function::Close))(fd);
  return verdict == Verdict::Pass ? result : failedWith(-1);
}

int link(const char* from, const char* to) noexcept {
  return madeOr(-1, Function::Link, CALLER, from, to);
}
int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
  return madeOr(-1, Function::LinkAt, CALLER, fromFolder, from, toFolder, to, flags);
}
int rename(const char* from, const char* to) noexcept {
  return madeOr(-1, Function::Rename, CALLER, from, to);
}
int unlink(const char* path) noexcept {
  return madeOr(-1, Function::Unlink, CALLER, path);
}

pid_t fork() noexcept {
  return madeOr<pid_t>(-1, Function::Fork, CALLER);
}
// By fork(): a child of vfork() could not return through this frame.
pid_t vfork() noexcept {
  if (judge(Function::VFork, CALLER) != Verdict::Pass) return failedWith<pid_t>(-1);
  return reinterpret_cast<pid_t (*)()>(behind(Function::Fork))();
}
int posix_spawn(pid_t* child, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const argv[],
                char* const environment[]) {
  return madeOr(plannedError(), Function::PosixSpawn, CALLER, child, path, actions, attributes,
                argv, environment);
}

int pipe(int ends[2]) noexcept {
  return madeOr(-1, Function::Pipe, CALLER, ends);
}
int pipe2(int ends[2], int flags) noexcept {
  return madeOr(-1, Function::Pipe2, CALLER, ends, flags);
}
int dup(int fd) noexcept {
  return madeOr(-1, Function::Dup, CALLER, fd);
}
int dup2(int from, int to) noexcept {
  return madeOr(-1, Function::Dup2, CALLER, from, to);
}
int dup3(int from, int to, int flags) noexcept {
  return madeOr(-1, Function::Dup3, CALLER, from, to, flags);
}
// Its argument is a number or a pointer, passed on as wide as the wider of them.
int fcntl(int fd, int command, ...) {
  va_list rest;
  va_start(rest, command);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  return madeOr(-1, Function::FCntl, CALLER, fd, command, argument);
}
int fcntl64(int fd, int command, ...) __attribute__((alias("fcntl")));

int stat(const char* path, struct stat* status) noexcept {
  return madeOr(-1, Function::Stat, CALLER, path, status);
}
int stat64(const char* path, struct stat64* status) noexcept {
  return madeOr(-1, Function::Stat, CALLER, path, status);
}
int lstat(const char* path, struct stat* status) noexcept {
  return madeOr(-1, Function::LStat, CALLER, path, status);
}
int lstat64(const char* path, struct stat64* status) noexcept {
  return madeOr(-1, Function::LStat, CALLER, path, status);
}
int fstat(int fd, struct stat* status) noexcept {
  return madeOr(-1, Function::FStat, CALLER, fd, status);
}
int fstat64(int fd, struct stat64* status) noexcept {
  return madeOr(-1, Function::FStat, CALLER, fd, status);
}
int mkdir(const char* path, mode_t mode) noexcept {
  return madeOr(-1, Function::MkDir, CALLER, path, mode);
}
int flock(int fd, int operation) noexcept {
  return madeOr(-1, Function::FLock, CALLER, fd, operation);
}
int fsetxattr(int fd, const char* name, const void* value, size_t size, int flags) noexcept {
  return madeOr(-1, Function::FSetXAttr, CALLER, fd, name, value, size, flags);
}

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                   void* argument) noexcept {
  return madeOr(plannedError(), Function::PThreadCreate, CALLER, thread, attributes, run, argument);
}
void* mmap(void* address, size_t size, int protection, int flags, int fd, off_t offset) noexcept {
  return madeOr(MAP_FAILED, Function::MMap, CALLER, address, size, protection, flags, fd, offset);
}
void* mmap64(void* address, size_t size, int protection, int flags, int fd, off64_t offset) noexcept
    __attribute__((alias("mmap")));

using Main = int (*)(int, char**, char**);
static Main programsMain = nullptr;

static int countedMain(int argc, char** argv, char** environment) {
  velka::testing::beginCounting();
  return programsMain(argc, argv, environment);
}

// What the start-up code of every program calls.
int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(),
                      void (*loaderFini)(), void* stackEnd) {
  using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
  programsMain = main;
  const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
  return start(countedMain, argc, argv, init, fini, loaderFini, stackEnd);
}

}  // extern "C"
