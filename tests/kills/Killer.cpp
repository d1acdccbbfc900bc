#include "kills/Killer.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstring>

namespace velka::testing {
namespace {

// From here on every call of this process and of those that it starts is held until the
// listener has seen it; but for sendmsg(), by which the listener itself is handed over. A
// signal that comes meanwhile finds the call itself: otherwise mmap(), say, would be told that
// one came, which happens nowhere else and what sanitizers do not bear.
int holdCalls() {
  std::array<sock_filter, 4> rules = {{
      {BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
      {BPF_JMP | BPF_JEQ | BPF_K, 0, 1, SYS_sendmsg},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
      {BPF_RET | BPF_K, 0, 0, SECCOMP_RET_USER_NOTIF},
  }};
  const sock_fprog program = {static_cast<unsigned short>(rules.size()), rules.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return -1;
  constexpr unsigned kFlags =
      SECCOMP_FILTER_FLAG_NEW_LISTENER | SECCOMP_FILTER_FLAG_WAIT_KILLABLE_RECV;
  return static_cast<int>(syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, kFlags, &program));
}

// A message of the process that becomes the program: its number, and the listener if any.
struct Hello {
  pid_t pid = 0;
  iovec text = {&pid, sizeof pid};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> room = {};
  msghdr message = {nullptr, 0, &text, 1, nullptr, 0, 0};
};

// Holds calls from here on, if any are to be held, and hands the listener over. Between the
// two there is no call of ours, which nobody would let pass yet; sanitizers stand in front of
// the library's sendmsg().
void sendHello(int socket, bool holding) {
  Hello hello;
  hello.pid = getpid();
  const int listener = holding ? holdCalls() : -1;
  if (listener >= 0) {
    hello.message.msg_control = hello.room.data();
    hello.message.msg_controllen = hello.room.size();
    cmsghdr* const part = CMSG_FIRSTHDR(&hello.message);
    *part = {CMSG_LEN(sizeof listener), SOL_SOCKET, SCM_RIGHTS};
    std::memcpy(CMSG_DATA(part), &listener, sizeof listener);
  }
  syscall(SYS_sendmsg, socket, &hello.message, 0);
  if (listener >= 0) close(listener);
}

// Its number, 0 for none; `listener` becomes what came along.
pid_t receiveHello(int socket, UniqueFd& listener) {
  Hello hello;
  hello.message.msg_control = hello.room.data();
  hello.message.msg_controllen = hello.room.size();
  if (recvmsg(socket, &hello.message, MSG_CMSG_CLOEXEC) != sizeof hello.pid) return 0;
  const cmsghdr* const part = CMSG_FIRSTHDR(&hello.message);
  int file = -1;
  if (part != nullptr) std::memcpy(&file, CMSG_DATA(part), sizeof file);
  listener = UniqueFd(file);
  return hello.pid;
}

}  // namespace

Killer::Killer(FilterJob& job, int signal, Instant when) : signal_(signal), when_(when) {
  int pair[2] = {-1, -1};
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, pair) != 0) return;
  ours_ = UniqueFd(pair[0]);
  childs_ = UniqueFd(pair[1]);
  job.beforeStart = [this] { sendHello(childs_.get(), when_.call != 0); };
  thread_ = std::thread([this] { run(); });
}

Killer::~Killer() {
  childs_ = UniqueFd();
  if (thread_.joinable()) thread_.join();
}

void Killer::run() {
  UniqueFd listener;
  const pid_t pid = receiveHello(ours_.get(), listener);
  if (pid == 0) return;
  // The number may be another process's once this one is reaped; its descriptor is not.
  program_ = UniqueFd(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
  if (listener) {
    serve(listener);
  } else {
    waitFor(when_.time);
    syscall(SYS_pidfd_send_signal, program_.get(), signal_, nullptr, 0);
  }
}

// Ends early where the program does.
void Killer::waitFor(std::chrono::microseconds time) const {
  const timespec timeout = {time.count() / 1000000, time.count() % 1000000 * 1000};
  pollfd ended = {program_.get(), POLLIN, 0};
  ppoll(&ended, 1, &timeout, nullptr);
}

// Until all processes have ended that it holds, or this object goes.
void Killer::serve(const UniqueFd& listener) {
  std::array<pollfd, 2> ready = {{{listener.get(), POLLIN, 0}, {ours_.get(), POLLIN, 0}}};
  while (poll(ready.data(), ready.size(), -1) > 0) {
    if ((ready[0].revents & POLLIN) != 0) {
      take(listener);
    } else if (ready[0].revents != 0 || ready[1].revents != 0) {
      return;
    }
  }
}

void Killer::take(const UniqueFd& listener) {
  seccomp_notif call = {};
  if (ioctl(listener.get(), SECCOMP_IOCTL_NOTIF_RECV, &call) != 0) return;
  if (calls_ > 0 || call.data.nr == SYS_execve) ++calls_;
  if (calls_ == when_.call) {
    syscall(SYS_pidfd_send_signal, program_.get(), signal_, nullptr, 0);
    when_.call = Instant::kNever;
  }
  seccomp_notif_resp answer = {call.id, 0, 0, SECCOMP_USER_NOTIF_FLAG_CONTINUE};
  ioctl(listener.get(), SECCOMP_IOCTL_NOTIF_SEND, &answer);
}

bool Killer::canHoldCalls() {
  FilterJob job;
  job.arguments = {};
  const Killer counter(job, 0, {});
  return runFilter("/bin/true", job).status == 0 && counter.calls() > 1;
}

}  // namespace velka::testing
