// The PDF of a drawing.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "DotDrawing.h"

namespace velka::calibration {

inline std::vector<uint8_t> bytesOf(const DotDrawing& drawing) {
  const auto pdf = pdfOf(drawing);
  const auto* bytes = std::get_if<std::vector<uint8_t>>(&pdf);
  EXPECT_NE(bytes, nullptr);
  return bytes != nullptr ? *bytes : std::vector<uint8_t>{};
}

/// Two drawings of one page that are drawn anew give the same PDF, which has no date.
inline void expectSamePdfs(const DotDrawing& one, const DotDrawing& other) {
  const std::vector<uint8_t> bytes = bytesOf(one);
  const std::string text(bytes.begin(), bytes.end());
  EXPECT_EQ(bytes, bytesOf(other));
  EXPECT_TRUE(text.starts_with("%PDF-"));
  EXPECT_EQ(text.find("CreationDate"), std::string::npos);
}

}  // namespace velka::calibration
