// The option of a contact sheet and its values.
#pragma once

#include <optional>
#include <string>

#include "Arguments.h"

namespace velka::view {

/// The most values of one option: each is a job of its own.
inline constexpr size_t kMostSheetValues = 256;

/// Reads "NAME=A,B,...", where each of A, B may also be FROM..TO/STEP: the numbers from
/// FROM on in steps of STEP, up (or, where TO is below FROM, down) to TO. Numbers keep as
/// many decimals as the most exact of the three has. None where it is not of that form
/// or has more values than `kMostSheetValues`.
[[nodiscard]] std::optional<SheetOption> readSheetOption(const std::string& text);

}  // namespace velka::view
