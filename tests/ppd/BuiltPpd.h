// The PPDs of this build, open.
#pragma once

#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace velka::testing {

using Ppd = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

inline const std::string kModels[] = {"standard", "orlo"};

/// A model's PPD with its defaults marked; null, and a failure, where it cannot be read.
inline Ppd openBuilt(const std::string& model) {
  Ppd ppd(ppdOpenFile((VELKA_PPDS "/velka-" + model + ".ppd").c_str()), ppdClose);
  EXPECT_NE(ppd, nullptr);
  if (ppd) ppdMarkDefaults(ppd.get());
  return ppd;
}

}  // namespace velka::testing
