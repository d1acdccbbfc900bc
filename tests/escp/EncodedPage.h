// A page whose planes are inked by hand, and its stream.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "escp/PageFixture.h"
#include "reference/ExpectedStream.h"
#include "support/Capture.h"

namespace velka::testing {

// A page of 12 columns whose planes are inked by hand.
struct EncodedPage {
  static constexpr size_t kWidth = 12;

  Job job;
  CESCPSML& generator;

  explicit EncodedPage(uint32_t height, uint32_t ydpi = 180)
      : job(kWidth, height, ydpi, ydpi), generator(*job.pdev.pEscpSml) {
    job.pdev.devModeOut = job.mode;
    job.pdev.dwCurPageNum = 1;
    job.pdev.pRectTree = new CRectTree;
    generator.m_nPlaneStride = static_cast<int>(kWidth);
    generator.m_nPageWidth = static_cast<int>(kWidth);
    generator.m_nPageHeight = static_cast<int>(height);
    const size_t size = kWidth * height;
    for (auto [plane, bytes] : {std::pair{&generator.m_pBlackBuf, &generator.m_dwBlackSize},
                                std::pair{&generator.m_pRedBuf, &generator.m_dwRedSize}}) {
      *plane = static_cast<unsigned char*>(std::malloc(size));
      std::memset(*plane, 255, size);
      *bytes = static_cast<unsigned int>(size);
    }
  }

  EncodedPage& band(int top, int rows = 24, int left = 0,
                    int right = static_cast<int>(kWidth) - 1) {
    job.pdev.pRectTree->insert({left, top, right, top + rows - 1}, static_cast<unsigned long>(top),
                               static_cast<unsigned long>(left));
    return *this;
  }
  // One dot at column 0 of a row.
  EncodedPage& black(int row) {
    generator.m_pBlackBuf[static_cast<size_t>(row) * kWidth] = 0;
    generator.m_nBlackFlag = 1;
    return *this;
  }
  EncodedPage& red(int row) {
    generator.m_pRedBuf[static_cast<size_t>(row) * kWidth] = 0;
    if (generator.m_nRedFlag == 0) job.pdev.lFirstRedRow = row;
    generator.m_nRedFlag = 1;
    return *this;
  }

  // The stream of EncodeAndSend; `result` is what it must return.
  Bytes encode(int result = 1) {
    const Capture capture(STDOUT_FILENO);
    EXPECT_EQ(generator.EncodeAndSend(&job.devobj, 0), result);
    return capture.bytes();
  }
};

// The block of one dot at the top of column 0: eleven blank columns follow, so no
// column but the dot's would be left, and the block is one column short.
inline Bytes blockOf(int colour, int mode = 0x27) {
  return reference::ExpectedStream().block(colour, mode, 0, {}).bytes();
}

}  // namespace velka::testing
