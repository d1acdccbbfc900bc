// From an RGB colour to the grey that the printer puts on paper for it: the CIE
// 1976 lightness L* (CIE 015, Colorimetry) of the colour, scaled to 0..255.
#pragma once

#include <cstdint>

/// Linear sRGB to CIE XYZ, D65. The first Y coefficient is 0.01 below the published
/// 0.2126729 on purpose: every grey the printer makes is balanced for it.
extern const double gsRGBcm[3][3];
/// Adaptation matrix, the identity until someone stores another one.
extern double PrecalcMatrix[3][3];
/// Bradford cone responses and their inverse (K. M. Lam, 1985): what an adaptation
/// matrix is computed from.
extern const double Bradford_Ma[3][3];
extern const double Bradford_Ma1[3][3];

/// Converts one colour at a time. Vectors are arrays of three doubles, never null;
/// an output must not be the same array as an input. Nothing reports errors.
class CColorManagment {
 public:
  CColorManagment() noexcept;
  ~CColorManagment();
  CColorManagment(const CColorManagment&) = delete;
  CColorManagment& operator=(const CColorManagment&) = delete;

  /// Puts r / 255, g / 255, b / 255 into both vectors.
  void SetRGB(unsigned char r, unsigned char g, unsigned char b) noexcept;

  /// The grey of the colour given to SetRGB: 0 black to 255 white. Overwrites both
  /// vectors (not for pure black and pure white), so each call needs a SetRGB of
  /// its own; without any, `gray` stays as it was.
  void RGBToGray(unsigned char& gray) noexcept;

  /// Makes `rgb` linear in place and multiplies it with gsRGBcm.
  void RGBToXYZ(double* rgb, double* xyz) noexcept;

  /// Removes the transfer curve. Its exponent is 2.2, not sRGB's 2.4, on purpose:
  /// it sets every grey level.
  double ToLinear(double c) noexcept;
  /// Applies the transfer curve of IEC 61966-2-1, so not the inverse of ToLinear.
  double ToNonLinear(double c) noexcept;

  /// CIE L*, a*, b* for the white of illuminant A.
  void XYZToLab(const double* xyz, double* lab) noexcept;
  double Fn_XYZToLab(double t) noexcept;

  /// out = m x v, each row summed from left to right.
  void MultiplyMatrix(const double (*m)[3], const double* v, double* out) noexcept;
  /// out = PrecalcMatrix x in.
  void ChromaticAdaption(const double* in, double* out) noexcept;

  /// gray[0] = L / 100, and back.
  void LabToGray(const double* lab, double* gray) noexcept;
  void GrayToLab(const double* gray, double* lab) noexcept;

  /// Inverse of XYZToLab and its parts.
  void LabToXYZ(const double* lab, double* xyz) noexcept;
  double Pow3(double x) noexcept;
  double Fx_LabToXYZ(double a, double L) noexcept;
  double Fy_LabToXYZ(double L) noexcept;
  double Fz_LabToXYZ(double b, double L) noexcept;

  /// XYZ to linear sRGB.
  void XYZToRGB(const double* xyz, double* rgb) noexcept;

  /// From gray[0] in 0..1 to linear RGB, left in `work` (with adaptation: in
  /// `gray`). work[1] and work[2] are taken for a* and b* as they are.
  void GrayToRGB(double* gray, double* work) noexcept;

  /// Stores the two parameters.
  void SetBrightParam(int bright, int contrast) noexcept;

  /// Builds the brightness and contrast table; returns its last entry.
  int SetLightTable(int bright, int contrast) noexcept;
  /// Maps a pixel through that table; pure black and white stay. Returns 1.
  int Light(unsigned char& r, unsigned char& g, unsigned char& b, int, int) noexcept;
  /// Sets the second vector to the first one, seen through a table built for these
  /// parameters. Returns 1, or 0 when SetRGB has not been called.
  int Light(int bright, int contrast) noexcept;

  /// Sorts `n` numbers upwards in place (D. L. Shell, CACM 2(7), 1959; gaps n/2,
  /// n/4, ... 1). Returns 1; a null array or an `n` below 2 changes nothing.
  int ShellSort(unsigned int* a, int n) noexcept;

  double* m_pColor;
  double* m_pWork;
  bool m_bAdapt;        ///< send XYZ through PrecalcMatrix
  int32_t m_nLastPath;  ///< 1 through the adaptation matrix, 2 direct
  int32_t m_nBright;
  int32_t m_nContrast;
  uint16_t m_LightTable[256];
};
