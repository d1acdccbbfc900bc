// Printer options from the PPD. Its log lines carry this file's name.
#include "InitalizeOemCfg.h"

#include <cstdlib>
#include <optional>

#include "CheckedMath.h"
#include "log4z.h"

namespace {

constexpr int kOrloModelNumber = 2;

int16_t low16(int64_t value) noexcept {
  return static_cast<int16_t>(static_cast<uint64_t>(value));
}

std::optional<int> integerOption(const tagOEMCFG* record, ppd_file_t* ppd,
                                 const char* keyword) noexcept {
  if (record == nullptr || ppd == nullptr) return std::nullopt;
  const int value = GetOptionChoiceIndex(keyword, ppd);
  return value == -1 ? std::nullopt : std::optional(value);
}

// A distance entered in millimetres, in tenths of them.
std::optional<int32_t> distanceOption(const tagOEMCFG* record, ppd_file_t* ppd,
                                      const char* keyword) noexcept {
  if (record == nullptr || ppd == nullptr) return std::nullopt;
  const float millimetres = GetOptionChoiceIndexf(keyword, ppd);
  if (millimetres == -1.0F) return std::nullopt;
  // Single precision on purpose: 0.7 must become 7.
  const float tenths = millimetres * 10.0F;
  return velka::truncateToInt32(tenths);
}

// Brightness and contrast: 100 is neutral.
int16_t aroundNeutral(int code) noexcept {
  return low16(int64_t{2} * code - 200);
}

int16_t levelsHundredths(int code) noexcept {
  return low16(int64_t{3} * code);
}

// The corners of the colour range are set byte by byte, each only where the PPD
// has it.
tagRGBQUAD colourOption(tagRGBQUAD colour, ppd_file_t* ppd, const char* red, const char* green,
                        const char* blue) noexcept {
  if (const int v = GetOptionChoiceIndex(red, ppd); v != -1)
    colour.rgbRed = static_cast<uint8_t>(v);
  if (const int v = GetOptionChoiceIndex(green, ppd); v != -1)
    colour.rgbGreen = static_cast<uint8_t>(v);
  if (const int v = GetOptionChoiceIndex(blue, ppd); v != -1)
    colour.rgbBlue = static_cast<uint8_t>(v);
  return colour;
}

}  // namespace

const char* GetOptionChoiceCode(const char* keyword, ppd_file_t* ppd) noexcept {
  if (keyword == nullptr || ppd == nullptr) return nullptr;
  if (const ppd_choice_t* marked = ppdFindMarkedChoice(ppd, keyword)) return marked->code;
  ppd_option_t* option = ppdFindOption(ppd, keyword);
  if (option == nullptr) return nullptr;
  const ppd_choice_t* standard = ppdFindChoice(option, option->defchoice);
  return standard == nullptr ? nullptr : standard->code;
}

int GetOptionChoiceIndex(const char* keyword, ppd_file_t* ppd) noexcept {
  const char* code = GetOptionChoiceCode(keyword, ppd);
  if (code == nullptr) return -1;
  return velka::low32(static_cast<uint64_t>(std::strtol(code, nullptr, 10)));
}

float GetOptionChoiceIndexf(const char* keyword, ppd_file_t* ppd) noexcept {
  const char* code = GetOptionChoiceCode(keyword, ppd);
  if (code == nullptr) return -1.0F;
  return static_cast<float>(std::strtod(code, nullptr));
}

void InitHorizontalOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "HorizontalOffset");
  if (!value) return;
  record->sHrzDir = *value;
  VELKA_LOG_DEBUG("Init sHrzDir: %d", record->sHrzDir);
}

void InitHorizontalOffsetValue(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = distanceOption(record, ppd, "HorizontalOffsetValue");
  if (!value) return;
  record->sHrzOffset = *value;
  VELKA_LOG_DEBUG("Init sHrzOffset: %d", record->sHrzOffset);
}

void InitVerticalOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "VerticalOffset");
  if (!value) return;
  record->sVtcDir = *value;
  VELKA_LOG_DEBUG("Init sVtcDir: %d", record->sVtcDir);
}

void InitVerticalOffsetValue(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = distanceOption(record, ppd, "VerticalOffsetValue");
  if (!value) return;
  record->sVtcOffset = *value;
  VELKA_LOG_DEBUG("Init sVtcOffset: %d", record->sVtcOffset);
}

void InitOutputColorType(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "OutputColorType");
  if (!value) return;
  record->OutputColorType = low16(*value);
  VELKA_LOG_DEBUG("Init OutputColorType: %d", record->OutputColorType);
}

void InitColorRangeUseFor(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "ColorRangeUseFor");
  if (!value) return;
  record->ColorRangeUseFor = low16(*value);
  VELKA_LOG_DEBUG("Init ColorRangeUseFor: %d", record->ColorRangeUseFor);
}

void InitMinColorOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  if (record == nullptr || ppd == nullptr) return;
  const tagRGBQUAD low =
      colourOption(record->minColorOffset, ppd, "RedMinValue", "GreenMinValue", "BlueMinValue");
  record->minColorOffset = low;
  VELKA_LOG_DEBUG("Init minColorOffset red: %d, green: %d, blue: %d", low.rgbRed, low.rgbGreen,
                  low.rgbBlue);
}

void InitMaxColorOffset(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  if (record == nullptr || ppd == nullptr) return;
  const tagRGBQUAD high =
      colourOption(record->maxColorOffset, ppd, "RedMaxValue", "GreenMaxValue", "BlueMaxValue");
  record->maxColorOffset = high;
  VELKA_LOG_DEBUG("Init maxColorOffset red: %d, green: %d, blue: %d", high.rgbRed, high.rgbGreen,
                  high.rgbBlue);
}

void InitColorSplit(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "SplitBlackRed");
  if (!value) return;
  record->SplitBlackRed = low16(*value);
  VELKA_LOG_DEBUG("Init SplitBlackRed: %d", record->SplitBlackRed);
}

void InitRotate(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "AnticlockwiseRotate");
  if (!value) return;
  record->sRotation = *value;
  VELKA_LOG_DEBUG("Init sRotation: %d", record->sRotation);
}

void InitBrightnessRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "BrightnessRed");
  if (!value) return;
  record->BrightnessRed = aroundNeutral(*value);
  VELKA_LOG_DEBUG("Init nBrightness red: %d", record->BrightnessRed);
}

void InitBrightnessBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "BrightnessBlack");
  if (!value) return;
  record->BrightnessBlack = aroundNeutral(*value);
  VELKA_LOG_DEBUG("Init nBrightness black: %d", record->BrightnessBlack);
}

void InitContrastRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "ContrastRed");
  if (!value) return;
  record->ContrastRed = aroundNeutral(*value);
  VELKA_LOG_DEBUG("Init Contrast red: %d", record->ContrastRed);
}

void InitContrastBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "ContrastBlack");
  if (!value) return;
  record->ContrastBlack = aroundNeutral(*value);
  VELKA_LOG_DEBUG("Init Contrast black: %d", record->ContrastBlack);
}

void InitLevelsRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "LevelsRed");
  if (!value) return;
  record->LevelsRed = levelsHundredths(*value);
  VELKA_LOG_DEBUG("Init sLevels red: %d", record->LevelsRed);
}

void InitLevelsBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "LevelsBlack");
  if (!value) return;
  record->LevelsBlack = levelsHundredths(*value);
  VELKA_LOG_DEBUG("Init sLevels black: %d", record->LevelsBlack);
}

void InitHalftoneBlack(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "HalftoneBlack");
  if (!value) return;
  record->sDitherBlack = low16(*value);
  VELKA_LOG_DEBUG("Init sDitherBlack: %d", record->sDitherBlack);
}

void InitHalftoneRed(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "HalftoneRed");
  if (!value) return;
  record->sDitherRed = low16(*value);
  VELKA_LOG_DEBUG("Init sDitherRed: %d", record->sDitherRed);
}

void InitDiffusionThreshold(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "DiffusionThreshold");
  if (!value) return;
  record->sDiffusionThreshold = low16(*value);
  VELKA_LOG_DEBUG("Init sDiffusionThreshold: %d", record->sDiffusionThreshold);
}

void InitDotWeight(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "DotWeight");
  if (!value) return;
  record->sDotErrorFactor = low16(*value);
  VELKA_LOG_DEBUG("Init sDotErrorFactor: %d", record->sDotErrorFactor);
}

void InitPaperEnd(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "PaperEnd");
  if (!value) return;
  record->sEjectMode = low16(*value);
  VELKA_LOG_DEBUG("Init sEjectMode: %d", record->sEjectMode);
}

void InitPaperEndFirstPages(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "PaperEndFirstPages");
  if (!value) return;
  record->sEjectFirstCount = low16(*value);
  VELKA_LOG_DEBUG("Init sEjectFirstCount: %d", record->sEjectFirstCount);
}

void InitPaperEndSecondPages(tagOEMCFG* record, ppd_file_t* ppd) noexcept {
  const auto value = integerOption(record, ppd, "PaperEndSecondPages");
  if (!value) return;
  record->sEjectSecondCount = low16(*value);
  VELKA_LOG_DEBUG("Init sEjectSecondCount: %d", record->sEjectSecondCount);
}

void InitalizeOemCfg(tagOEMCFG* record, ppd_file_t* ppd,
                     const cups_page_header2_t* /*header*/) noexcept {
  // Deliberate: without a PPD not even the defaults are copied.
  if (record == nullptr || ppd == nullptr) return;
  *record = defaultOemdev[ppd->model_number == kOrloModelNumber ? 1 : 0];
  InitHorizontalOffset(record, ppd);
  InitHorizontalOffsetValue(record, ppd);
  InitVerticalOffset(record, ppd);
  InitVerticalOffsetValue(record, ppd);
  InitOutputColorType(record, ppd);
  InitColorRangeUseFor(record, ppd);
  InitMinColorOffset(record, ppd);
  InitMaxColorOffset(record, ppd);
  InitColorSplit(record, ppd);
  InitRotate(record, ppd);
  InitBrightnessRed(record, ppd);
  InitBrightnessBlack(record, ppd);
  InitContrastRed(record, ppd);
  InitContrastBlack(record, ppd);
  InitLevelsRed(record, ppd);
  InitLevelsBlack(record, ppd);
  InitHalftoneBlack(record, ppd);
  InitHalftoneRed(record, ppd);
  InitDiffusionThreshold(record, ppd);
  InitDotWeight(record, ppd);
  InitPaperEnd(record, ppd);
  InitPaperEndFirstPages(record, ppd);
  InitPaperEndSecondPages(record, ppd);
  record->sConfigured = 1;
}
