#include "ColorManagment.h"

#include <cmath>
#include <new>
#include <utility>

#include "ByteMath.h"
#include "CheckedMath.h"
#include "LightTable.h"

const double gsRGBcm[3][3] = {{0.4124564, 0.3575761, 0.1804375},
                              {0.2026729, 0.7151522, 0.0721750},
                              {0.0193339, 0.1191920, 0.9503041}};
double PrecalcMatrix[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
const double Bradford_Ma[3][3] = {
    {0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}};
const double Bradford_Ma1[3][3] = {{0.9869929, -0.1470543, 0.1599627},
                                   {0.4323053, 0.5183603, 0.0492912},
                                   {-0.0085287, 0.0400428, 0.9684867}};

namespace {

constexpr double kEpsilon = 0.008856451679035631;  // 216 / 24389
constexpr double kKappa = 903.2962962962963;       // 24389 / 27

// The white is illuminant A's although XYZ is for D65: only a* and b* are moved
// by that, and only L* is used.
constexpr double kWhiteX = 1.0985;
constexpr double kWhiteZ = 0.35585;

bool isNeutral(const double* c, double level) {
  return c[0] == level && c[1] == level && c[2] == level;
}

/// The array of a vector, made on first use; null when memory runs out.
double* ensureVector(double*& vector) {
  if (vector == nullptr) {
    vector = new (std::nothrow) double[3];
  }
  return vector;
}

/// Greys whose fraction is 0.45 or more round up, hence 0.55.
unsigned char grayOfLightness(double lightness) {
  return velka::lowByte(velka::truncateToInt32(lightness / 100.0 * 255.0 + 0.55));
}

}  // namespace

CColorManagment::CColorManagment() noexcept
    : m_pColor(nullptr),
      m_pWork(nullptr),
      m_bAdapt(false),
      m_nLastPath(0),
      m_nBright(0),
      m_nContrast(0),
      m_LightTable{} {
  velka::fillIdentity(m_LightTable);
}

CColorManagment::~CColorManagment() {
  delete[] m_pColor;
  delete[] m_pWork;
}

// The arrays stay for the next colour: a page asks for millions.
void CColorManagment::SetRGB(unsigned char r, unsigned char g, unsigned char b) noexcept {
  if (ensureVector(m_pColor) == nullptr || ensureVector(m_pWork) == nullptr) {
    return;
  }
  m_pColor[0] = r / 255.0;
  m_pColor[1] = g / 255.0;
  m_pColor[2] = b / 255.0;
  for (int i = 0; i < 3; ++i) {
    m_pWork[i] = m_pColor[i];
  }
}

void CColorManagment::RGBToGray(unsigned char& gray) noexcept {
  if (m_pColor == nullptr || m_pWork == nullptr) {
    return;
  }
  if (isNeutral(m_pColor, 0.0) || isNeutral(m_pColor, 1.0)) {
    gray = velka::lowByte(velka::truncateToInt32(m_pColor[0] * 255.0));
    return;
  }
  RGBToXYZ(m_pColor, m_pWork);
  double* xyz = m_pWork;
  double* lab = m_pColor;
  if (m_bAdapt) {
    ChromaticAdaption(m_pWork, m_pColor);
    std::swap(xyz, lab);
  }
  XYZToLab(xyz, lab);
  gray = grayOfLightness(lab[0]);
  xyz[0] = lab[0] / 100.0;
  m_nLastPath = m_bAdapt ? 1 : 2;
}

void CColorManagment::RGBToXYZ(double* rgb, double* xyz) noexcept {
  for (int i = 0; i < 3; ++i) {
    rgb[i] = ToLinear(rgb[i]);
  }
  MultiplyMatrix(gsRGBcm, rgb, xyz);
}

double CColorManagment::ToLinear(double c) noexcept {
  return c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.2) : c / 12.92;
}

double CColorManagment::ToNonLinear(double c) noexcept {
  return c > 0.0031308 ? 1.055 * std::pow(c, 0.4166666666666667) - 0.055 : 12.92 * c;
}

void CColorManagment::XYZToLab(const double* xyz, double* lab) noexcept {
  const double fy = Fn_XYZToLab(xyz[1]);
  const double fx = Fn_XYZToLab(xyz[0] / kWhiteX);
  const double fz = Fn_XYZToLab(xyz[2] / kWhiteZ);
  lab[0] = 116.0 * fy - 16.0;
  lab[1] = 500.0 * (fx - fy);
  lab[2] = 200.0 * (fy - fz);
}

double CColorManagment::Fn_XYZToLab(double t) noexcept {
  return t > kEpsilon ? std::pow(t, 0.3333333333333333) : (kKappa * t + 16.0) / 116.0;
}

void CColorManagment::MultiplyMatrix(const double (*m)[3], const double* v, double* out) noexcept {
  for (int i = 0; i < 3; ++i) {
    out[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
  }
}

void CColorManagment::ChromaticAdaption(const double* in, double* out) noexcept {
  MultiplyMatrix(PrecalcMatrix, in, out);
}

void CColorManagment::LabToGray(const double* lab, double* gray) noexcept {
  gray[0] = lab[0] / 100.0;
}

void CColorManagment::GrayToLab(const double* gray, double* lab) noexcept {
  lab[0] = 100.0 * gray[0];
}

void CColorManagment::LabToXYZ(const double* lab, double* xyz) noexcept {
  const double fy = Fy_LabToXYZ(lab[0]);
  const double fx = Fx_LabToXYZ(lab[1], lab[0]);
  const double fz = Fz_LabToXYZ(lab[2], lab[0]);
  const auto inverse = [this](double f) {
    return Pow3(f) > kEpsilon ? Pow3(f) : (116.0 * f - 16.0) / kKappa;
  };
  xyz[0] = inverse(fx) * kWhiteX;
  xyz[1] = lab[0] > 8.0 ? Pow3(fy) : lab[0] / kKappa;
  xyz[2] = inverse(fz) * kWhiteZ;
}

double CColorManagment::Pow3(double x) noexcept {
  return x * x * x;
}

double CColorManagment::Fx_LabToXYZ(double a, double L) noexcept {
  return a / 500.0 + (L + 16.0) / 116.0;
}

double CColorManagment::Fy_LabToXYZ(double L) noexcept {
  return (L + 16.0) / 116.0;
}

double CColorManagment::Fz_LabToXYZ(double b, double L) noexcept {
  return (L + 16.0) / 116.0 - b / 200.0;
}

void CColorManagment::XYZToRGB(const double* xyz, double* rgb) noexcept {
  static constexpr double kToRgb[3][3] = {{3.2404542, -1.5371385, -0.4985314},
                                          {-0.9692660, 1.8760108, 0.0415560},
                                          {0.0556434, -0.2040259, 1.0572252}};
  MultiplyMatrix(kToRgb, xyz, rgb);
}

void CColorManagment::GrayToRGB(double* gray, double* work) noexcept {
  GrayToLab(gray, work);
  LabToXYZ(work, gray);
  if (m_bAdapt) {
    ChromaticAdaption(gray, work);
    XYZToRGB(work, gray);
    m_nLastPath = 1;
  } else {
    XYZToRGB(gray, work);
    m_nLastPath = 2;
  }
}

void CColorManagment::SetBrightParam(int bright, int contrast) noexcept {
  m_nBright = bright;
  m_nContrast = contrast;
}

int CColorManagment::SetLightTable(int bright, int contrast) noexcept {
  velka::fillLightTable(bright, contrast, m_LightTable);
  return m_LightTable[255];
}

int CColorManagment::Light(unsigned char& r, unsigned char& g, unsigned char& b, int /*unused*/,
                           int /*unused*/) noexcept {
  velka::applyLight(m_LightTable, r, g, b);
  return 1;
}

int CColorManagment::Light(int bright, int contrast) noexcept {
  if (m_pColor == nullptr || m_pWork == nullptr) {
    return 0;
  }
  uint16_t table[256];
  velka::fillLightTable(bright, contrast, table);
  for (int k = 0; k < 3; ++k) {
    m_pWork[k] = table[velka::clampToByte(velka::truncateToInt32(m_pColor[k] * 255.0))] / 255.0;
  }
  return 1;
}

int CColorManagment::ShellSort(unsigned int* a, int n) noexcept {
  if (a == nullptr) {
    return 1;
  }
  for (int gap = n / 2; gap > 0; gap /= 2) {
    for (int i = gap; i < n; ++i) {
      const unsigned int value = a[i];
      int j = i;
      for (; j >= gap && a[j - gap] > value; j -= gap) {
        a[j] = a[j - gap];
      }
      a[j] = value;
    }
  }
  return 1;
}
