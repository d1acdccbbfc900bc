// What a person reads on a calibration page, from its dots on paper.
#pragma once

#include <string>
#include <vector>

#include "DeviceRecords.h"
#include "PrintedPage.h"

namespace velka::calibrationtest {

inline constexpr int64_t kCoarse = decode::kUnitsPerInch / 180;
inline constexpr int64_t kFine = decode::kUnitsPerInch / 360;

/// Tells what is wrong on standard error, and counts it.
void complain(const std::string& text);
[[nodiscard]] int complaints();

/// Whether the numbers of all fields are those of printers astray by as many steps.
void checkRegistration(const std::vector<Dot>& printed);

/// Prints the offsets to set, tenths of a millimetre right and down.
void tellPosition(const std::vector<Dot>& dots);

/// Whether what was promised for a value is what is printed with it.
void compareTones(const std::string& option, const std::string& value,
                  const std::vector<Dot>& before, const std::vector<Dot>& after);

/// Prints the bounds, by the ends of the red patches.
void tellColours(const std::vector<Dot>& dots);

/// Whether each patch is in the ink that the page has it in.
void checkInks(const std::vector<Dot>& dots, const tagOEMCFG& options);

}  // namespace velka::calibrationtest
