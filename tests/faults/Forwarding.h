// How a function of the shim passes a call on, or fails it.
#pragma once

#include "FaultPlan.h"

/// Who called the function that this stands in.
#define CALLER __builtin_return_address(0)

namespace velka::testing {

/// `result`, with the planned error in errno.
template <typename Result>
Result failedWith(Result result) noexcept {
  errno = plannedError();
  return result;
}

/// A call that is either made or fails.
template <typename Result, typename... Arguments>
Result madeOr(Result failure, Function function, const void* caller,
              Arguments... arguments) noexcept {
  if (judge(function, caller) != Verdict::Pass) return failedWith(failure);
  return reinterpret_cast<Result (*)(Arguments...)>(behind(function))(arguments...);
}

}  // namespace velka::testing
