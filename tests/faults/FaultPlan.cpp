#include "FaultPlan.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <bit>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <span>

#include "FaultReport.h"

namespace velka::testing {
namespace {

constexpr size_t kFunctions = static_cast<size_t>(Function::Count);
static_assert(kFunctions <= kMostFunctions);

struct NamedError {
  const char* name;
  int error;
};

constexpr std::array<NamedError, 10> kErrors = {{{"EACCES", EACCES},
                                                 {"EAGAIN", EAGAIN},
                                                 {"EEXIST", EEXIST},
                                                 {"EINTR", EINTR},
                                                 {"EIO", EIO},
                                                 {"EMFILE", EMFILE},
                                                 {"ENOENT", ENOENT},
                                                 {"ENOMEM", ENOMEM},
                                                 {"ENOSPC", ENOSPC},
                                                 {"EPERM", EPERM}}};

struct Plan {
  bool active = false;
  Function function = Function::Count;
  uint64_t first = 0;
  bool once = true;
  bool cutsShort = false;
  int error = 0;
};

constinit Plan plan;
constinit FaultReport* report = nullptr;
constinit std::array<void*, kFunctions> functions = {};

// The text up to the next colon, which is passed over.
struct Word {
  const char* text;
  size_t size;
  [[nodiscard]] bool is(const char* other) const noexcept {
    return std::strlen(other) == size && std::memcmp(text, other, size) == 0;
  }
};

Word takeWord(const char*& text) noexcept {
  const Word word = {text, std::strcspn(text, ":")};
  text += word.size;
  if (*text == ':') ++text;
  return word;
}

// FUNCTION:N:once|on:ERRNO|short
bool readPlan(const char* text) noexcept {
  const Word function = takeWord(text);
  for (size_t i = 0; i < kFunctions; ++i)
    if (function.is(kFunctionNames[i])) plan.function = static_cast<Function>(i);
  plan.first = std::strtoull(takeWord(text).text, nullptr, 10);
  plan.once = takeWord(text).is("once");
  const Word action = takeWord(text);
  plan.cutsShort = action.is("short");
  for (const NamedError& known : kErrors)
    if (action.is(known.name)) plan.error = known.error;
  return plan.function != Function::Count && (plan.cutsShort || plan.error != 0);
}

// An inherited LD_PRELOAD reaches the shell and the tools as well.
bool isProgramUnderTest() noexcept {
  const char* wanted = std::getenv("VELKA_FAULT_PROGRAM");
  std::array<char, PATH_MAX> own = {};
  const long size = syscall(SYS_readlinkat, AT_FDCWD, "/proc/self/exe", own.data(), own.size() - 1);
  return wanted != nullptr && size > 0 && std::strcmp(own.data(), wanted) == 0;
}

FaultReport* mapReport(const char* path) noexcept {
  if (path == nullptr) return nullptr;
  const long file = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CLOEXEC);
  if (file < 0) return nullptr;
  const long address =
      syscall(SYS_mmap, nullptr, sizeof(FaultReport), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0L);
  syscall(SYS_close, file);
  return address < 0 && address > -4096 ? nullptr : std::bit_cast<FaultReport*>(address);
}

void nameModule(const void* address, std::span<char> name) noexcept {
  Dl_info info = {};
  if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return;
  const char* slash = std::strrchr(info.dli_fname, '/');
  std::strncpy(name.data(), slash == nullptr ? info.dli_fname : slash + 1, name.size() - 1);
}

// Says where the program fell, and lets it fall.
extern "C" void noteFault(int signal, siginfo_t* info, void* context) {
  report->signal = signal;
  report->faultAddress = reinterpret_cast<uintptr_t>(info->si_addr);
#if defined(__x86_64__)
  const auto& registers = static_cast<const ucontext_t*>(context)->uc_mcontext.gregs;
  nameModule(std::bit_cast<const void*>(registers[REG_RIP]), report->faultIn);
#elif defined(__aarch64__)
  const auto place = static_cast<const ucontext_t*>(context)->uc_mcontext.pc;
  nameModule(std::bit_cast<const void*>(place), report->faultIn);
#endif
}

void watchFaults() noexcept {
  struct sigaction action = {};
  action.sa_sigaction = noteFault;
  action.sa_flags = static_cast<int>(SA_SIGINFO | SA_RESETHAND);
  for (const int signal : {SIGSEGV, SIGBUS}) sigaction(signal, &action, nullptr);
}

}  // namespace

void beginCounting() noexcept {
  // All at once: a child between fork() and exec() may not ask for them.
  for (size_t i = 0; i < kFunctions; ++i) (void)behind(static_cast<Function>(i));
  const char* text = std::getenv("VELKA_FAULT");
  if (text == nullptr || !isProgramUnderTest() || !readPlan(text)) return;
  report = mapReport(std::getenv("VELKA_FAULT_REPORT"));
  if (report == nullptr) return;
  watchFaults();
  plan.active = true;
}

extern "C" void velkaFaultsEnd() noexcept {
  plan.active = false;
}

Verdict judge(Function function, const void* caller, size_t size) noexcept {
  if (!plan.active) return Verdict::Pass;
  const uint64_t number =
      std::atomic_ref(report->calls[static_cast<size_t>(function)]).fetch_add(1) + 1;
  if (function != plan.function) return Verdict::Pass;
  if (plan.once ? number != plan.first : number < plan.first) return Verdict::Pass;
  std::atomic_ref(report->failed).fetch_add(1);
  report->lastSize = size;
  const int before = errno;
  nameModule(caller, report->caller);
  errno = before;
  return plan.cutsShort ? Verdict::Short : Verdict::Fail;
}

int plannedError() noexcept {
  return plan.error;
}

void* behind(Function function) noexcept {
  void*& known = functions[static_cast<size_t>(function)];
  if (known == nullptr) known = dlsym(RTLD_NEXT, kFunctionNames[static_cast<size_t>(function)]);
  return known;
}

}  // namespace velka::testing
