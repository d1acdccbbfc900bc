// Options that a job would take without a word and that would change nothing.
#pragma once

#include <string>
#include <vector>

#include "Outcome.h"

namespace velka::view {

struct OptionCheck {
  Problem trouble;                    ///< the PPD cannot be read
  Problem wrong;                      ///< an option or choice that is refused
  std::vector<std::string> warnings;  ///< options that nobody may know
};

/// Looks each option of `options` up in a PPD. A choice that its option does not have
/// is wrong; so is a name that neither the PPD nor the print system knows, if it is a
/// slip of one that they do. Any other is worth a warning, as some filter of the chain
/// may take it.
[[nodiscard]] OptionCheck checkOptions(const std::string& ppd, const std::string& options);

/// Looks the option of a sheet and the values to compare up; here an unknown name is
/// wrong, too.
[[nodiscard]] OptionCheck checkSheet(const std::string& ppd, const std::string& option,
                                     const std::vector<std::string>& values);

/// The choice that a PPD's option has where a job does not state it; none where it has
/// no such option.
[[nodiscard]] std::optional<std::string> defaultOf(const std::string& ppd,
                                                   const std::string& option);

}  // namespace velka::view
