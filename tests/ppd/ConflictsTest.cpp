// Which settings a print dialog refuses.
#include <cups/cups.h>
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "ppd/BuiltPpd.h"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace velka::testing {
namespace {

// Conflicts of a job's options, over the defaults.
int conflictsOf(ppd_file_t* ppd, const char* options) {
  ppdMarkDefaults(ppd);
  cups_option_t* parsed = nullptr;
  const int count = cupsParseOptions(options, 0, &parsed);
  cupsMarkOptions(ppd, count, parsed);
  cupsFreeOptions(count, parsed);
  return ppdConflicts(ppd);
}

void expectConflict(const char* options) {
  for (const std::string& model : kModels) {
    const Ppd ppd = openBuilt(model);
    ASSERT_NE(ppd, nullptr);
    EXPECT_GT(conflictsOf(ppd.get(), options), 0) << model << ", " << options;
  }
}

void expectPeace(const char* options) {
  for (const std::string& model : kModels) {
    const Ppd ppd = openBuilt(model);
    ASSERT_NE(ppd, nullptr);
    EXPECT_EQ(conflictsOf(ppd.get(), options), 0) << model << ", " << options;
  }
}

TEST(Conflicts, WhoAsksForNothingHasNone) {
  expectPeace("");
}

TEST(Conflicts, OneInkHasNoOrder) {
  expectConflict("OutputColorType=Black SplitBlackRed=BlackFirst");
  expectConflict("OutputColorType=Red SplitBlackRed=BlackFirst");
  expectPeace("OutputColorType=BlackAndRed SplitBlackRed=BlackFirst");
  expectPeace("OutputColorType=Black SplitBlackRed=Together");
}

TEST(Conflicts, APageLongerThanTheHeadIsWideIsNotTurned) {
  for (const char* size : {"A3", "57x600mm", "76x600mm", "80x600mm", "210x600mm", "210x1000mm"}) {
    const std::string paper = std::string("PageSize=") + size;
    expectConflict((paper + " AnticlockwiseRotate=90").c_str());
    expectConflict((paper + " AnticlockwiseRotate=270").c_str());
    expectPeace((paper + " AnticlockwiseRotate=180").c_str());
  }
}

// The longest edge that the PPD allows across the paper is that of its widest custom size.
TEST(Conflicts, EverySizeThatFitsMayBeTurned) {
  const Ppd ppd = openBuilt("standard");
  ASSERT_NE(ppd, nullptr);
  int sizes = 0;
  for (const ppd_size_t& size : std::span(ppd->sizes, static_cast<size_t>(ppd->num_sizes))) {
    if (std::string(size.name) == "Custom") continue;
    const std::string options = std::string("AnticlockwiseRotate=90 PageSize=") + size.name;
    EXPECT_EQ(conflictsOf(ppd.get(), options.c_str()) == 0, size.length <= ppd->custom_max[0])
        << size.name;
    ++sizes;
  }
  EXPECT_EQ(sizes, 34);
}

// libcups never frees the presets that it reads for such options.
TEST(Conflicts, PresetsOfADefaultQueueHaveNone) {
#ifdef __SANITIZE_ADDRESS__
  const __lsan::ScopedDisabler leaksAreNotOurs;
#endif
  for (const char* quality : {"3", "4", "5"}) {
    expectPeace((std::string("print-quality=") + quality).c_str());
    expectPeace((std::string("print-color-mode=monochrome print-quality=") + quality).c_str());
  }
}

// Each choice of a code is there once for whoever leaves out what is not installed.
TEST(Conflicts, DialogsShowEachCodeOnce) {
  for (const std::string& model : kModels) {
    const Ppd ppd = openBuilt(model);
    ASSERT_NE(ppd, nullptr);
    int hidden = 0;
    for (ppd_option_t* o = ppdFirstOption(ppd.get()); o != nullptr; o = ppdNextOption(ppd.get())) {
      const std::string keyword = o->keyword;
      if (keyword.starts_with("Page") || keyword == "OldNames") continue;
      std::vector<std::string> codes;
      for (const ppd_choice_t& choice :
           std::span(o->choices, static_cast<size_t>(o->num_choices))) {
        if (ppdInstallableConflict(ppd.get(), o->keyword, choice.choice) != 0) {
          ++hidden;
        } else {
          EXPECT_EQ(std::ranges::count(codes, choice.code), 0) << keyword << ' ' << choice.choice;
          codes.emplace_back(choice.code);
        }
      }
    }
    EXPECT_EQ(hidden, model == "standard" ? 33 : 28) << model;
  }
}

}  // namespace
}  // namespace velka::testing
