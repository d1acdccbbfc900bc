#include <gtest/gtest.h>

#include "HeaderCheck.h"
#include "JobWatch.h"
#include "support/RasterBuilder.h"

namespace {

using namespace velka;
using namespace velka::testing;

constexpr uint64_t kMost = uint64_t{1} << 30U;

TEST(HeaderCheck, TheQueuesOwnResolutionsAreFine) {
  const std::pair<unsigned, unsigned> pairs[] = {{180, 180}, {60, 180},  {90, 180}, {120, 180},
                                                 {360, 180}, {360, 360}, {60, 60},  {80, 60},
                                                 {90, 60},   {120, 60},  {720, 720}};
  for (const auto& [across, down] : pairs)
    EXPECT_EQ(headerTrouble(rgbHeader(100, 100, across, down), true, kMost), Trouble::None)
        << across << " x " << down;
}

TEST(HeaderCheck, APairWithoutAModeIsToldOfTheFirstPageAlone) {
  for (const auto& header : {rgbHeader(100, 100, 300, 300), rgbHeader(100, 100, 180, 360),
                             rgbHeader(100, 100, 180, 60), rgbHeader(100, 100, 0, 0)}) {
    EXPECT_EQ(headerTrouble(header, true, kMost), Trouble::Resolution);
    EXPECT_EQ(headerTrouble(header, false, kMost), Trouble::None);
  }
}

TEST(HeaderCheck, OnlyChunkedRgbOfEightBitsHasTheColours) {
  const auto with = [](auto change) {
    cups_page_header2_t header = rgbHeader(100, 100);
    change(header);
    return headerTrouble(header, false, kMost);
  };
  EXPECT_EQ(with([](auto& h) { h.cupsColorSpace = CUPS_CSPACE_RGB; }), Trouble::None);
  EXPECT_EQ(with([](auto& h) { h.cupsColorSpace = CUPS_CSPACE_ADOBERGB; }), Trouble::None);
  EXPECT_EQ(with([](auto& h) { h.cupsColorSpace = CUPS_CSPACE_CMY; }), Trouble::Colours);
  EXPECT_EQ(with([](auto& h) { h.cupsBitsPerPixel = 8; }), Trouble::Colours);
  EXPECT_EQ(with([](auto& h) { h.cupsBitsPerColor = 16; }), Trouble::Colours);
  EXPECT_EQ(with([](auto& h) { h.cupsColorOrder = CUPS_ORDER_BANDED; }), Trouble::Colours);
  EXPECT_EQ(with([](auto& h) { h.cupsColorOrder = CUPS_ORDER_PLANAR; }), Trouble::Colours);
}

TEST(HeaderCheck, APageBeyondItsBoundOrThirtyTwoBitsIsTooLarge) {
  EXPECT_EQ(headerTrouble(rgbHeader(100, 100), true, 300 * 100), Trouble::None);
  EXPECT_EQ(headerTrouble(rgbHeader(100, 100), true, 300 * 100 - 1), Trouble::TooLarge);
  EXPECT_EQ(headerTrouble(rgbHeader(40000, 40000), true, UINT32_MAX), Trouble::TooLarge);
  cups_page_header2_t longLines = rgbHeader(100, 100);
  longLines.cupsBytesPerLine = 1U << 31U;
  EXPECT_EQ(headerTrouble(longLines, true, kMost), Trouble::TooLarge);
}

TEST(HeaderCheck, AFormOfMoreThan255LinesIsTooLongAndPrints) {
  EXPECT_EQ(headerTrouble(rgbHeader(100, 7679), true, kMost), Trouble::None);  // 255.97 lines
  EXPECT_EQ(headerTrouble(rgbHeader(100, 7680), true, kMost), Trouble::TooLong);
  EXPECT_EQ(headerTrouble(rgbHeader(100, 30719, 720, 720), true, kMost), Trouble::None);
  EXPECT_EQ(headerTrouble(rgbHeader(100, 30720, 720, 720), true, kMost), Trouble::TooLong);
  EXPECT_TRUE(isPrinted(Trouble::TooLong));
  EXPECT_FALSE(isPrinted(Trouble::TooLarge));
}

TEST(HeaderCheck, EveryTroubleHasAReasonAndEveryPageItsText) {
  const auto header = rgbHeader(123, 456, 300, 200);
  for (const Trouble trouble :
       {Trouble::Colours, Trouble::Resolution, Trouble::TooLarge, Trouble::TooLong}) {
    EXPECT_EQ(troubleText(trouble, header, 7).substr(0, 7), "Page 7 ");
    EXPECT_NE(allStateReasons().find(stateReason(trouble)), std::string::npos);
    EXPECT_EQ(stateReason(trouble).substr(0, 6), "velka-");
  }
  EXPECT_NE(troubleText(Trouble::Resolution, header, 7).find("300 x 200 dpi"), std::string::npos);
  EXPECT_NE(troubleText(Trouble::TooLarge, header, 7).find("123 x 456 pixels"), std::string::npos);
  EXPECT_EQ(stateReason(Trouble::Copy), "velka-pdf-copy-error");
  EXPECT_EQ(stateReason(Trouble::None), "");
}

TEST(CopiesOfAJob, AreWhatTheModelMakesOfTheFirstHeader) {
  cups_page_header2_t header = rgbHeader(10, 10);
  header.NumCopies = 3;
  EXPECT_EQ(copiesOf(header, false).count, 3U);
  EXPECT_FALSE(copiesOf(header, false).collated);
  EXPECT_EQ(copiesOf(header, true).count, 1U);
  header.Collate = CUPS_TRUE;
  EXPECT_TRUE(copiesOf(header, false).collated);
  header.NumCopies = 0;
  EXPECT_EQ(copiesOf(header, false).count, 1U);
  EXPECT_FALSE(copiesOf(header, false).collated);
  header.NumCopies = 0x18000;  // 16 bits keep -32768 of it
  EXPECT_EQ(copiesOf(header, false).count, 1U);
  header.NumCopies = 0x10002;
  EXPECT_EQ(copiesOf(header, false).count, 2U);
}

TEST(ProgressText, NamesThePageAndItsCopies) {
  EXPECT_EQ(progressText(4, {1, false}), "Printing page 4");
  EXPECT_EQ(progressText(4, {3, false}), "Printing page 4, 3 copies");
}

TEST(MissingPages, AreNamedOneOrMany) {
  EXPECT_EQ(missingPagesText(4, 3),
            "Page 4 is not in the PDF copy of the job, which has 3 pages: it stays white; print "
            "the job with PdfPreprocess=no");
  EXPECT_EQ(missingPagesText(6, 1).substr(0, 60),
            "Pages 2 to 6 are not in the PDF copy of the job, which has 1");
}

}  // namespace
