// The job's printer options, read from the PPD.
//
// An option's value is the code of its choice (its invocation value in the PPD),
// not the choice's name. -1 cannot be told from an absent option: it keeps the
// default.
#pragma once

#include <cups/ppd.h>
#include <cups/raster.h>

#include <array>

#include "DeviceRecords.h"

/// The built-in options: row 0 standard model, row 1 Orlo model.
extern const std::array<tagOEMCFG, 2> defaultOemdev;

/// Code of the option's marked choice, else of its default choice. Belongs to the
/// PPD. Null where the keyword, the PPD, the option or the choice is absent.
const char* GetOptionChoiceCode(const char* keyword, ppd_file_t* ppd) noexcept;

/// That code as a decimal integer, its low 32 bits; 0 where it is no number, -1
/// where there is no code.
int GetOptionChoiceIndex(const char* keyword, ppd_file_t* ppd) noexcept;

/// That code as a floating-point number; -1 where there is no code.
float GetOptionChoiceIndexf(const char* keyword, ppd_file_t* ppd) noexcept;

/// Fills the record: the model's defaults, then the PPD's choices. Does nothing
/// at all without a record or a PPD. The header is not used.
void InitalizeOemCfg(tagOEMCFG* record, ppd_file_t* ppd,
                     const cups_page_header2_t* header) noexcept;

// One group of options each. They store what the PPD has, converted but never
// clamped (codes wrap to the width of their field), and log it; an absent option
// keeps the field. An absent record or PPD makes them do nothing.

/// "HorizontalOffset" to `sHrzDir`.
void InitHorizontalOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "HorizontalOffsetValue", millimetres, to `sHrzOffset`, tenths of them.
void InitHorizontalOffsetValue(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "VerticalOffset" to `sVtcDir`.
void InitVerticalOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "VerticalOffsetValue", millimetres, to `sVtcOffset`, tenths of them.
void InitVerticalOffsetValue(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "OutputColorType".
void InitOutputColorType(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "ColorRangeUseFor".
void InitColorRangeUseFor(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "RedMinValue", "GreenMinValue", "BlueMinValue" to `minColorOffset`.
void InitMinColorOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "RedMaxValue", "GreenMaxValue", "BlueMaxValue" to `maxColorOffset`.
void InitMaxColorOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "SplitBlackRed".
void InitColorSplit(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "AnticlockwiseRotate" to `sRotation`.
void InitRotate(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// Brightness and contrast: codes 0 to 200 become -200 to 200.
void InitBrightnessRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitBrightnessBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitContrastRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitContrastBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// Levels: codes 0 to 100 become 0 to 300 hundredths.
void InitLevelsRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitLevelsBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "HalftoneBlack" and "HalftoneRed", a mode of velka::dither, to `sDitherBlack` and
/// `sDitherRed`.
void InitHalftoneBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitHalftoneRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "DiffusionThreshold": the lightest value that error diffusion of the standard model
/// prints, to `sDiffusionThreshold`.
void InitDiffusionThreshold(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "DotWeight": what a dot of it counts as, in tenths of its value, to `sDotErrorFactor`.
void InitDotWeight(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
/// "PaperEnd", the rule of the eject-mode command, to `sEjectMode`; its cycle of
/// "PaperEndFirstPages" and "PaperEndSecondPages" to the two counts.
void InitPaperEnd(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitPaperEndFirstPages(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
void InitPaperEndSecondPages(tagOEMCFG* record, ppd_file_t* ppd) noexcept;
