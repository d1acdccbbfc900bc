#include "AnyPpd.h"

#include <sys/mman.h>
#include <unistd.h>

#include <sstream>

namespace velka::fuzz {
namespace {

constexpr const char* kKeywords[] = {
    "HorizontalOffset", "HorizontalOffsetValue", "VerticalOffset",      "VerticalOffsetValue",
    "OutputColorType",  "ColorRangeUseFor",      "RedMinValue",         "GreenMinValue",
    "BlueMinValue",     "RedMaxValue",           "GreenMaxValue",       "BlueMaxValue",
    "SplitBlackRed",    "AnticlockwiseRotate",   "BrightnessRed",       "BrightnessBlack",
    "ContrastRed",      "ContrastBlack",         "LevelsRed",           "LevelsBlack",
    "HalftoneBlack",    "HalftoneRed",           "DiffusionThreshold",  "DotWeight",
    "PaperEnd",         "PaperEndFirstPages",    "PaperEndSecondPages", "DotPlacement",
    "Resolution",       "PdfPreprocess"};

}  // namespace

MemoryFile::MemoryFile(std::span<const uint8_t> contents)
    : fd_(memfd_create("velka-fuzz", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(fd_)) {
  require(fd_ >= 0);
  while (!contents.empty()) {
    const ssize_t written = write(fd_, contents.data(), contents.size());
    require(written > 0);
    contents = contents.subspan(static_cast<size_t>(written));
  }
}

MemoryFile::~MemoryFile() {
  close(fd_);
}

const char* anyKeyword(Input& input) {
  return input.oneOf(kKeywords);
}

std::string anyPpd(Input& input) {
  std::ostringstream text;
  text << "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*LanguageVersion: English\n"
          "*LanguageEncoding: ISOLatin1\n*PCFileName: \"VELKA.PPD\"\n*Product: \"(Velka)\"\n"
          "*Manufacturer: \"Velka\"\n*ModelName: \"Velka\"\n*ShortNickName: \"Velka\"\n"
          "*NickName: \"Velka\"\n*PSVersion: \"(3010.000) 0\"\n*cupsModelNumber: "
       << input.below(4) << '\n';
  for (int options = input.below(32); options > 0; --options) {
    const std::string keyword = anyKeyword(input);
    const std::string code =
        input.flag() ? std::to_string(input.byte()) : input.text(input.byte() % 16U);
    text << "*OpenUI *" << keyword << '/' << keyword << ": PickOne\n*Default" << keyword
         << ": Chosen\n*" << keyword << " Chosen/Chosen: \"" << code << "\"\n*" << keyword
         << " Other/Other: \"" << input.below(512) - 128 << "\"\n*CloseUI: *" << keyword << '\n';
  }
  text << input.text();
  return text.str();
}

}  // namespace velka::fuzz
