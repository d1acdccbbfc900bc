// A file system without nameless files, as the kernel may be told to play it.
#pragma once

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <array>
#include <cerrno>
#include <cstddef>

#include "support/TestPdf.h"

namespace velka::testing {

/// Whether /tmp has them.
inline bool tmpHasNamelessFiles() {
  const int file = open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (file >= 0) close(file);
  return file >= 0;
}

/// From here on the process and what it starts are told that there are none. False
/// where the kernel cannot be asked for that.
inline bool forbidNamelessFiles() {
  constexpr unsigned kFlags = offsetof(seccomp_data, args) + 2 * sizeof(uint64_t);
  constexpr unsigned kNameless = O_TMPFILE & ~O_DIRECTORY;
  std::array<sock_filter, 6> rules = {{
      {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
      {BPF_JMP | BPF_JEQ | BPF_K, 0, 3, SYS_openat},
      {BPF_LD | BPF_W | BPF_ABS, 0, 0, kFlags},
      {BPF_JMP | BPF_JSET | BPF_K, 0, 1, kNameless},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | EOPNOTSUPP},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
  }};
  const sock_fprog program = {static_cast<unsigned short>(rules.size()), rules.data()};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

}  // namespace velka::testing
