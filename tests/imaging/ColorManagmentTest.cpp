#include <gtest/gtest.h>

#include <cmath>

#include "ColorManagment.h"
#include "LiteralImaging.h"

namespace {

unsigned char grayOf(int r, int g, int b) {
  CColorManagment color;
  color.SetRGB(static_cast<unsigned char>(r), static_cast<unsigned char>(g),
               static_cast<unsigned char>(b));
  unsigned char gray = 77;
  color.RGBToGray(gray);
  return gray;
}

/// Stores the identity again at the end, whatever happens between.
class AdaptationGuard {
 public:
  AdaptationGuard() = default;
  AdaptationGuard(const AdaptationGuard&) = delete;
  AdaptationGuard& operator=(const AdaptationGuard&) = delete;
  ~AdaptationGuard() {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        PrecalcMatrix[i][j] = i == j ? 1.0 : 0.0;
      }
    }
  }
};

TEST(Gray, WorkedColoursHaveTheirGreys) {
  EXPECT_EQ(grayOf(128, 128, 128), 144);
  EXPECT_EQ(grayOf(255, 0, 0), 133);
  EXPECT_EQ(grayOf(0, 255, 0), 224);
  EXPECT_EQ(grayOf(0, 0, 255), 82);
  EXPECT_EQ(grayOf(255, 255, 0), 247);
  EXPECT_EQ(grayOf(254, 254, 254), 253);
  EXPECT_EQ(grayOf(1, 1, 1), 1);
  EXPECT_EQ(grayOf(10, 10, 10), 7);
  EXPECT_EQ(grayOf(11, 11, 11), 12);
}

TEST(Gray, BlackAndWhiteLeaveBothVectorsUntouched) {
  for (const int level : {0, 255}) {
    CColorManagment color;
    const auto byte = static_cast<unsigned char>(level);
    color.SetRGB(byte, byte, byte);
    unsigned char gray = 77;
    color.RGBToGray(gray);
    EXPECT_EQ(gray, level);
    EXPECT_EQ(color.m_nLastPath, 0);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(color.m_pColor[i], level / 255.0);
      EXPECT_EQ(color.m_pWork[i], level / 255.0);
    }
  }
}

TEST(Gray, WithoutAColourTheGreyStaysAsItWas) {
  CColorManagment color;
  unsigned char gray = 77;
  color.RGBToGray(gray);
  EXPECT_EQ(gray, 77);
  EXPECT_EQ(color.m_pColor, nullptr);
  EXPECT_EQ(color.m_pWork, nullptr);
  EXPECT_FALSE(color.m_bAdapt);
}

TEST(Gray, SetRgbPutsFractionsIntoBothVectors) {
  CColorManagment color;
  color.SetRGB(51, 102, 255);
  for (const double* vector : {color.m_pColor, color.m_pWork}) {
    EXPECT_EQ(vector[0], 51 / 255.0);
    EXPECT_EQ(vector[1], 102 / 255.0);
    EXPECT_EQ(vector[2], 1.0);
  }
}

TEST(Gray, DirectPathLeavesLabInTheColourAndTheGreyInTheWorkVector) {
  CColorManagment color;
  color.SetRGB(128, 128, 128);
  unsigned char gray = 0;
  color.RGBToGray(gray);
  EXPECT_EQ(color.m_nLastPath, 2);
  EXPECT_NEAR(color.m_pColor[0], 56.37, 0.005);
  EXPECT_EQ(color.m_pWork[0], color.m_pColor[0] / 100.0);
  unsigned char again = gray;
  color.RGBToGray(again);
  EXPECT_NE(again, gray);
}

TEST(Gray, IdentityAdaptationChangesThePathAndNotTheGrey) {
  CColorManagment color;
  color.m_bAdapt = true;
  color.SetRGB(128, 128, 128);
  unsigned char gray = 0;
  color.RGBToGray(gray);
  EXPECT_EQ(gray, 144);
  EXPECT_EQ(color.m_nLastPath, 1);
  EXPECT_NEAR(color.m_pWork[0], 56.37, 0.005);
  EXPECT_EQ(color.m_pColor[0], color.m_pWork[0] / 100.0);
}

TEST(Gray, AdaptationMatrixTakesPart) {
  const AdaptationGuard guard;
  PrecalcMatrix[1][1] = 0.5;
  CColorManagment color;
  color.m_bAdapt = true;
  color.SetRGB(128, 128, 128);
  unsigned char gray = 0;
  color.RGBToGray(gray);
  EXPECT_NEAR(color.m_pWork[0], 116.0 * std::cbrt(0.24283 / 2) - 16.0, 0.01);
  EXPECT_EQ(gray, 106);
}

TEST(Gray, WildAdaptationIsDefined) {
  const AdaptationGuard guard;
  PrecalcMatrix[1][1] = 1e300;
  CColorManagment color;
  color.m_bAdapt = true;
  color.SetRGB(128, 128, 128);
  unsigned char gray = 0;
  color.RGBToGray(gray);
  EXPECT_EQ(gray, 0);  // the lowest integer's last byte
}

TEST(Gray, ALatticeOfColoursEqualsTheFormula) {
  CColorManagment color;
  for (uint32_t c = 0; c < 1U << 24; c += 61 * velka::literal::kColorStep) {
    const auto r = static_cast<uint8_t>(c >> 16);
    const auto g = static_cast<uint8_t>(c >> 8);
    const auto b = static_cast<uint8_t>(c);
    unsigned char gray = 0;
    color.SetRGB(r, g, b);
    color.RGBToGray(gray);
    ASSERT_EQ(gray, velka::literal::gray(r, g, b)) << c;
  }
}

TEST(ColorFormulas, LinearisationHasItsBreakInTheLinearBranch) {
  CColorManagment color;
  EXPECT_EQ(color.ToLinear(0.04045), 0.04045 / 12.92);
  EXPECT_EQ(color.ToLinear(10 / 255.0), 10 / 255.0 / 12.92);
  EXPECT_EQ(color.ToLinear(11 / 255.0), std::pow((11 / 255.0 + 0.055) / 1.055, 2.2));
}

TEST(ColorFormulas, TheTwoTransferCurvesAreNotInverse) {
  CColorManagment color;
  EXPECT_EQ(color.ToNonLinear(0.0031308), 12.92 * 0.0031308);
  EXPECT_DOUBLE_EQ(color.ToNonLinear(0.5), 1.055 * std::pow(0.5, 1 / 2.4) - 0.055);
  EXPECT_GT(color.ToNonLinear(color.ToLinear(0.5)), 0.51);
}

TEST(ColorFormulas, LuminanceRowSumsTo99PerCent) {
  EXPECT_DOUBLE_EQ(gsRGBcm[1][0] + gsRGBcm[1][1] + gsRGBcm[1][2], 0.9900001);
}

TEST(ColorFormulas, BradfordMatricesAreInverse) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double sum = 0.0;
      for (int k = 0; k < 3; ++k) {
        sum += Bradford_Ma[i][k] * Bradford_Ma1[k][j];
      }
      EXPECT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-6);
    }
  }
}

TEST(ColorFormulas, RgbToXyzMakesTheInputLinearAndMultiplies) {
  CColorManagment color;
  double rgb[3] = {1.0, 0.0, 0.02};
  double xyz[3];
  color.RGBToXYZ(rgb, xyz);
  EXPECT_EQ(rgb[2], 0.02 / 12.92);
  EXPECT_DOUBLE_EQ(xyz[0], 0.4124564 + 0.1804375 * rgb[2]);
  EXPECT_DOUBLE_EQ(xyz[1], 0.2026729 + 0.0721750 * rgb[2]);
  EXPECT_DOUBLE_EQ(xyz[2], 0.0193339 + 0.9503041 * rgb[2]);
}

TEST(ColorFormulas, MatrixTimesVectorAndAdaptation) {
  CColorManagment color;
  double m[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  double v[3] = {1, 10, 100};
  double out[3];
  color.MultiplyMatrix(m, v, out);
  EXPECT_EQ(out[0], 321);
  EXPECT_EQ(out[1], 654);
  EXPECT_EQ(out[2], 987);
  color.ChromaticAdaption(v, out);
  EXPECT_EQ(out[0], 1);
  EXPECT_EQ(out[1], 10);
  EXPECT_EQ(out[2], 100);
}

TEST(ColorFormulas, LabOfTheWhiteIsAHundredWithoutHue) {
  CColorManagment color;
  double white[3] = {1.0985, 1.0, 0.35585};
  double lab[3];
  color.XYZToLab(white, lab);
  EXPECT_DOUBLE_EQ(lab[0], 100.0);
  EXPECT_DOUBLE_EQ(lab[1], 0.0);
  EXPECT_DOUBLE_EQ(lab[2], 0.0);
  EXPECT_EQ(color.Fn_XYZToLab(0.001), (903.2962962962963 * 0.001 + 16) / 116);
}

TEST(ColorFormulas, LabToXyzIsTheInverseInEveryBranch) {
  CColorManagment color;
  const double colours[][3] = {{0.3, 0.4, 0.2}, {0.003, 0.004, 0.001}, {0.9, 0.05, 0.0005}};
  for (const auto& xyz : colours) {
    double lab[3];
    double back[3];
    color.XYZToLab(xyz, lab);
    color.LabToXYZ(lab, back);
    for (int i = 0; i < 3; ++i) {
      EXPECT_NEAR(back[i], xyz[i], 1e-12);
    }
  }
  EXPECT_EQ(color.Pow3(3.0), 27.0);
  EXPECT_EQ(color.Fx_LabToXYZ(50.0, 100.0), 50.0 / 500.0 + 1.0);
  EXPECT_EQ(color.Fy_LabToXYZ(100.0), 1.0);
  EXPECT_EQ(color.Fz_LabToXYZ(50.0, 100.0), 1.0 - 0.25);
}

TEST(ColorFormulas, GrayAndLightnessDifferByAHundred) {
  CColorManagment color;
  double lab[1] = {25.0};
  double gray[1] = {0.0};
  color.LabToGray(lab, gray);
  EXPECT_EQ(gray[0], 0.25);
  color.GrayToLab(gray, lab);
  EXPECT_EQ(lab[0], 25.0);
}

TEST(ColorFormulas, XyzToRgbTakesD65WhiteToOnes) {
  CColorManagment color;
  double white[3] = {0.95047, 1.0, 1.08883};
  double rgb[3];
  color.XYZToRGB(white, rgb);
  for (const double c : rgb) {
    EXPECT_NEAR(c, 1.0, 1e-5);
  }
}

TEST(ColorFormulas, GrayToRgbEndsInTheWorkVectorOrWithAdaptationInTheGray) {
  CColorManagment color;
  double expected[3];
  double white[3] = {1.0985, 1.0, 0.35585};
  color.XYZToRGB(white, expected);
  double gray[3] = {1.0, 0.0, 0.0};
  double work[3] = {0.0, 0.0, 0.0};
  color.GrayToRGB(gray, work);
  EXPECT_EQ(color.m_nLastPath, 2);
  double adapted[3] = {1.0, 0.0, 0.0};
  double between[3] = {0.0, 0.0, 0.0};
  color.m_bAdapt = true;
  color.GrayToRGB(adapted, between);
  EXPECT_EQ(color.m_nLastPath, 1);
  for (int i = 0; i < 3; ++i) {
    EXPECT_DOUBLE_EQ(work[i], expected[i]);
    EXPECT_DOUBLE_EQ(gray[i], white[i]);
    EXPECT_DOUBLE_EQ(adapted[i], expected[i]);
    EXPECT_DOUBLE_EQ(between[i], white[i]);
  }
}

}  // namespace
