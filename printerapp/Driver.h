// The models as the library's drivers.
#pragma once

#include <pappl/pappl.h>

#include <span>

namespace velka::app {

/// Name, description and device ids of both drivers.
[[nodiscard]] std::span<pappl_pr_driver_t> drivers();

/// Fills in what a driver can do; false for a name that is none of ours. The library's
/// callback.
bool describeDriver(pappl_system_t* system, const char* driver, const char* uri,
                    const char* deviceId, pappl_pr_driver_data_t* data, ipp_t** attributes,
                    void* context);

/// Says which inks a new printer has; nobody knows how much is left of them. The library's
/// callback.
void nameSupplies(pappl_printer_t* printer, void* context);

/// The driver for a device that was found, null for a device of another kind.
const char* matchDriver(const char* info, const char* uri, const char* deviceId, void* context);

}  // namespace velka::app
