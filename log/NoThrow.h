// The border between code that may run out of memory and callers that expect a
// bool.
#pragma once

namespace velka {

/// The action's result, or `failure` when it throws.
template <class Action, class Result = bool>
Result noThrow(Action&& action, Result failure = Result{}) noexcept {
  try {
    return action();
  } catch (...) {
    return failure;
  }
}

/// The action as far as it gets, where nobody asks how it ended.
template <class Action>
void attempt(Action&& action) noexcept {
  try {
    action();
  } catch (...) {
    return;
  }
}

}  // namespace velka
