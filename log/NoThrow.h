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

}  // namespace velka
