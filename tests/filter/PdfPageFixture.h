// One page of a PDF into the page bitmap.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "PreInc.h"
#include "ToolLimits.h"
#include "rastovelka.h"
#include "support/RasterBuilder.h"
#include "support/TestPdf.h"

namespace velka::testing {

inline const std::vector<std::string> kTools = {"grep", "cut", "sh", "pdfinfo", "cat", "printf"};

// One job's arguments and its record, white before each page.
class PdfPage : public ::testing::Test {
 protected:
  void SetUp() override { whitePage(); }
  void TearDown() override {
    vFreeBuffer(&g_oemPDEV);
    pageLimits = {};
  }

  void whitePage() {
    vFreeBuffer(&g_oemPDEV);
    g_oemPDEV = {};
    g_oemPDEV.bmInfoHeader.biWidth = 20;
    ASSERT_EQ(bGrowBuffer(&g_oemPDEV, 600), 1);
    std::memset(g_oemPDEV.pBufStart, 0xFF, 600);
  }
  void use(int page, unsigned xdpi = 180, unsigned ydpi = 180, unsigned bits = 24) {
    cups_page_header2_t header = rgbHeader(20, 10, xdpi, ydpi);
    header.cupsBitsPerPixel = bits;
    std::string id = id_;
    std::string program = "rastovelka";
    std::array<char*, 3> argv = {program.data(), id.data(), nullptr};
    UsePdfprocess(nullptr, name_.data(), argv.data(), page, header, pdf_.c_str());
  }
  [[nodiscard]] static Bytes bitmap() {
    return {g_oemPDEV.pBufStart, g_oemPDEV.pBufStart + g_oemPDEV.dwBufSize};
  }
  static void expectWhite() {
    EXPECT_EQ(bitmap(), Bytes(600, 0xFF));
    EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biWidth, 20);
  }
  // The tool's own picture of the page is what the record holds.
  void expectPicture(int page, unsigned xdpi, unsigned ydpi) {
    const Picture picture = drawPage(pdf_, page, xdpi, ydpi);
    ASSERT_GT(picture.width, 0);
    EXPECT_TRUE(bitmap() == bitmapOf(picture)) << "page " << page;
    EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biWidth, picture.width);
    EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biHeight, picture.height);
    EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biSizeImage, bitmapOf(picture).size());
    EXPECT_EQ(+g_oemPDEV.srcGdiInfo.szlPhysSize.cx, picture.width);
    EXPECT_EQ(+g_oemPDEV.srcGdiInfo.szlPhysSize.cy, picture.height);
    EXPECT_EQ(+g_oemPDEV.srcGdiInfo.ulHorzRes, static_cast<uint32_t>(picture.width));
    EXPECT_EQ(+g_oemPDEV.srcGdiInfo.ulVertRes, static_cast<uint32_t>(picture.height));
  }
  // A tool that writes this text as the picture of page 3 of a 9-page document and ends
  // with a command.
  void useFakePicture(const std::string& printfText, unsigned bits = 24,
                      const std::string& ending = "exit 0") {
    const ToolFolder tools(kTools);
    tools.addScript("pdfinfo", "echo 'Pages:          9'");
    tools.addScript("pdftoppm", "for root; do :; done; printf '" + printfText +
                                    "' >\"$root-3.ppm\"; " + ending);
    const Environment path("PATH", tools.path());
    use(3, 180, 180, bits);
  }

  JobId job_{"pdf"};
  std::string id_ = job_.text();
  std::string pdf_ = job_.pdf();
  std::array<char, 256> name_ = {};
};

}  // namespace velka::testing
