// The options of the command line, and what each is for.
#pragma once

#include <getopt.h>

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Arguments.h"

namespace velka::view {

/// What getopt_long() gives for an option without a short name.
enum Long : int {
  kList = 256,
  kStats,
  kDiff,
  kFrom,
  kSheet,
  kBy,
  kServe,
  kPort,
  kOpen,
  kCalibration,
  kPpd,
  kAnyPpd,
  kOptions,
  kOptionsFile,
  kModel,
  kWidth,
  kHeadSpeed,
  kFeedSpeed,
  kPage,
  kDpi,
  kScale,
  kPins,
  kTone,
  kFormat,
  kSave,
  kProgress,
};

/// As getopt_long() takes them, the empty one at the end included.
[[nodiscard]] std::span<const option> longOptions();

/// The first of the options `given` that would be passed over in silence, in words.
[[nodiscard]] std::optional<std::string> whatIsIdle(const std::vector<int>& given,
                                                    const Arguments& arguments);

/// What getopt_long() could not use, by the code it gave and the word it stopped at.
[[nodiscard]] std::string unusableOption(int code, const std::string& word);

}  // namespace velka::view
