// Looking at a device handle before following it.
#pragma once

#include "DeviceRecords.h"

namespace velka {

/// Whether a handle leads to all three records. Before the first page it does not.
[[nodiscard]] inline bool isComplete(const _DEVOBJ* devobj) noexcept {
  return devobj != nullptr && devobj->pOemPDEV != nullptr && devobj->pDevMode != nullptr &&
         devobj->pOemDev != nullptr;
}

}  // namespace velka
