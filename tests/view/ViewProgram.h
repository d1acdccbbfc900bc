// velkaview as its users call it, in a folder of its own.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "reference/ExpectedStream.h"
#include "support/FilterRun.h"
#include "support/TestPdf.h"

namespace velka::view {

class Program : public ::testing::Test {
 protected:
  void SetUp() override {
    before_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
  }
  void TearDown() override { std::filesystem::current_path(before_); }

  static testing::FilterResult run(const std::vector<std::string>& arguments,
                                   const testing::Bytes& input = {}) {
    testing::FilterJob job;
    job.arguments = arguments;
    job.input = input;
    return testing::runFilter(VELKA_VIEW, job);
  }

  static void put(const std::string& name, const std::vector<uint8_t>& bytes) {
    testing::writeText(name, std::string(bytes.begin(), bytes.end()));
  }

  static bool isThere(const std::string& name) { return std::filesystem::exists(name); }

  static std::string outputOf(const testing::FilterResult& result) {
    return {result.output.begin(), result.output.end()};
  }

 private:
  testing::TempFolder folder_;
  std::filesystem::path before_;
};

inline reference::ExpectedStream onePage() {
  return reference::ExpectedStream().start(6).block(0, 39, 1, {0x80, 0, 0}).formFeed();
}

}  // namespace velka::view
