// How much memory a page may ask for.
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>

#include "JobLog.h"
#include "PageLimit.h"
#include "support/RasterBuilder.h"
#include "support/TestPpd.h"

namespace velka::testing {
namespace {

constexpr uint64_t kGibibyte = uint64_t{1} << 30U;

struct PpdCloser {
  void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

// The limit for a page of the given resolution on a queue whose PPD has these lines more.
uint64_t limitOf(const std::string& lines, unsigned across, unsigned down) {
  const TempFile file(ppdText({}) + lines);
  const std::unique_ptr<ppd_file_t, PpdCloser> ppd(ppdOpenFile(file.path().c_str()));
  EXPECT_NE(ppd, nullptr);
  return mostPageBytes(ppd.get(), rgbHeader(10, 10, across, down));
}

std::string pageSize(const std::string& points) {
  return "*OpenUI *PageSize/Size: PickOne\n*OrderDependency: 10 AnySetup *PageSize\n"
         "*DefaultPageSize: One\n*PageSize One/One: \"\"\n*CloseUI: *PageSize\n"
         "*ImageableArea One/One: \"0 0 " +
         points + "\"\n*PaperDimension One/One: \"" + points + "\"\n";
}

std::string customSizes(const std::string& width, const std::string& height) {
  return "*VariablePaperSize: True\n*MaxMediaWidth: \"" + width + "\"\n*MaxMediaHeight: \"" +
         height + "\"\n*HWMargins: 0 0 0 0\n*NonUIOrderDependency: 10 AnySetup *CustomPageSize\n" +
         "*CustomPageSize True: \"\"\n*ParamCustomPageSize Width: 1 points 36 " + width +
         "\n*ParamCustomPageSize Height: 2 points 36 " + height +
         "\n*ParamCustomPageSize WidthOffset: 3 points 0 0\n"
         "*ParamCustomPageSize HeightOffset: 4 points 0 0\n"
         "*ParamCustomPageSize Orientation: 5 int 0 0\n";
}

std::string resolutions(const std::vector<std::string>& names) {
  std::string text =
      "*OpenUI *Resolution/Resolution: PickOne\n*OrderDependency: 10 AnySetup *Resolution\n"
      "*DefaultResolution: " +
      names.front() + "\n";
  for (const std::string& name : names) text += "*Resolution " + name + "/R: \"\"\n";
  return text + "*CloseUI: *Resolution\n";
}

TEST(PageLimit, IsAGibibyteWithoutAPpdAndForPagesBelowIt) {
  EXPECT_EQ(mostPageBytes(nullptr, rgbHeader(10, 10, 360, 360)), kGibibyte);
  EXPECT_EQ(limitOf("", 360, 360), kGibibyte);
  EXPECT_EQ(limitOf(pageSize("612 792"), 360, 360), kGibibyte);
}

TEST(PageLimit, IsTheLargestPageOfThePpdAtTheHeadersResolution) {
  // 100 x 50 inch: 36,000 x 18,000 dots of three bytes at 360 dpi.
  EXPECT_EQ(limitOf(pageSize("7200 3600"), 360, 360), uint64_t{36000} * 3 * 18000);
  EXPECT_EQ(limitOf(pageSize("7200 3600"), 360, 216), uint64_t{36000} * 3 * 10800);
  EXPECT_EQ(limitOf(pageSize("7200 3600"), 180, 180), kGibibyte);
  // Rows are padded, and a part of a dot is a dot.
  EXPECT_EQ(limitOf(pageSize("7200.1 3600.1"), 360, 360), uint64_t{108004} * 18001);
}

TEST(PageLimit, CountsCustomSizes) {
  EXPECT_EQ(limitOf(pageSize("612 792") + customSizes("1440", "18000"), 360, 360),
            uint64_t{7200} * 3 * 90000);
}

// Any page can be had by a header that lies about its resolution.
TEST(PageLimit, TakesNoResolutionThatTheQueueDoesNotOffer) {
  const uint64_t at360 = uint64_t{36000} * 3 * 18000;
  const std::string size = pageSize("7200 3600");
  EXPECT_EQ(limitOf(size, 0xFFFFFFFF, 0xFFFFFFFF), at360);
  EXPECT_EQ(limitOf(size + resolutions({"180dpi", "360x216dpi"}), 720, 720), at360 * 216 / 360);
  EXPECT_EQ(limitOf(size + resolutions({"360dpi"}), 720, 720), at360);
  EXPECT_EQ(limitOf(size + resolutions({"400x200dpi"}), 720, 720), uint64_t{40000} * 3 * 10000);
  EXPECT_EQ(limitOf(size + resolutions({"Draft"}), 720, 720), at360);
  EXPECT_EQ(limitOf(size + resolutions({"0x180dpi"}), 720, 720), at360);
  EXPECT_EQ(limitOf(size + resolutions({"180x0dpi"}), 720, 720), at360);
}

TEST(PageLimit, IsNeverMoreThan32Bits) {
  EXPECT_EQ(limitOf(pageSize("720000 720000"), 360, 360), UINT32_MAX);
  EXPECT_EQ(limitOf(pageSize("1e30 1e30"), 360, 360), kGibibyte);
  EXPECT_EQ(limitOf(pageSize("-7200 3600"), 360, 360), kGibibyte);
}

TEST(JobLogWarning, SaysWhatTheSystemSaidOrNothingWhereSomethingElseStandsThere) {
  const TempFile file("");
  EXPECT_STREQ(whyNotOpened(file.path().c_str(), EACCES), "Permission denied");
  EXPECT_STREQ(whyNotOpened("/nonexistent/log", ENOENT), "No such file or directory");
  EXPECT_STREQ(whyNotOpened(file.path().c_str(), 0), "it is not this user's alone");
  EXPECT_EQ(whyNotOpened("/tmp", EISDIR), nullptr);
  EXPECT_EQ(whyNotOpened("/dev/null", 0), nullptr);
  EXPECT_EQ(whyNotOpened("/proc/self", ELOOP), nullptr);
}

}  // namespace
}  // namespace velka::testing
