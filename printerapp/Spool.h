// The folder that holds jobs, the printers' state and whatever else is nobody's business.
#pragma once

#include <string>

namespace velka::app {

/// Makes the folder, for its owner alone, and keeps its name. What is wrong with it, empty
/// where it can be used: one that others may enter or that belongs to somebody else cannot.
[[nodiscard]] std::string useSpoolFolder(const std::string& name);

[[nodiscard]] const std::string& spoolFolder() noexcept;

/// Where it is unless the administrator says otherwise.
[[nodiscard]] std::string usualSpoolFolder();

}  // namespace velka::app
