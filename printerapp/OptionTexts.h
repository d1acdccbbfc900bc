// What a model's options and their choices are called, in each language that its PPD has.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Model.h"

namespace velka::app {

/// The languages of the model's PPD as it names them, "en" and "zh_CN".
[[nodiscard]] std::vector<std::string> languagesOf(const Model& model);

/// The texts of a model's options as lines of a .strings file, the keys "OPTION" and
/// "OPTION.CHOICE". What the language has no text for, which are numbers, is as in English.
[[nodiscard]] std::string stringsOf(const Model& model, std::string_view language);

}  // namespace velka::app
