// Signals that wait.
#pragma once

#include <csignal>
#include <initializer_list>

namespace velka {

/// Holds signals back from this thread while it lives.
class SignalsHeldBack {
 public:
  explicit SignalsHeldBack(std::initializer_list<int> signals) noexcept {
    sigset_t held = {};
    sigemptyset(&held);
    for (const int signal : signals) {
      sigaddset(&held, signal);
    }
    pthread_sigmask(SIG_BLOCK, &held, &before_);
  }
  ~SignalsHeldBack() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsHeldBack(const SignalsHeldBack&) = delete;
  SignalsHeldBack& operator=(const SignalsHeldBack&) = delete;

  /// The mask that was there before.
  [[nodiscard]] const sigset_t& before() const noexcept { return before_; }

 private:
  sigset_t before_ = {};
};

}  // namespace velka
