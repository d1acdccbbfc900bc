#include "support/TestPpd.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace velka::testing {

std::string ppdText(const PpdText& ppd) {
  std::string text =
      "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n"
      "*LanguageVersion: English\n*LanguageEncoding: ISOLatin1\n*PCFileName: \"VELKA.PPD\"\n"
      "*Product: \"(Velka)\"\n*Manufacturer: \"Velka\"\n*ModelName: \"Velka Test\"\n"
      "*ShortNickName: \"Velka Test\"\n*NickName: \"Velka Test\"\n*PSVersion: \"(3010.000) 0\"\n"
      "*LanguageLevel: \"3\"\n*ColorDevice: True\n*DefaultColorSpace: RGB\n";
  if (!ppd.fileVersion.empty()) text += "*FileVersion: \"" + ppd.fileVersion + "\"\n";
  text += "*cupsModelNumber: " + std::to_string(ppd.modelNumber) + "\n";
  for (const auto& [keyword, code] : ppd.options) {
    std::ostringstream option;
    option << "*OpenUI *" << keyword << "/" << keyword
           << ": PickOne\n*OrderDependency: 10 AnySetup *" << keyword << "\n*Default" << keyword
           << ": Chosen\n*" << keyword << " Chosen/Chosen: \"" << code << "\"\n*" << keyword
           << " Other/Other: \"7\"\n*CloseUI: *" << keyword << "\n";
    text += option.str();
  }
  const std::string pdf = ppd.pdfPreprocess ? "yes" : "no";
  text +=
      "*OpenUI *PdfPreprocess/Pdf: PickOne\n*OrderDependency: 10 AnySetup *PdfPreprocess\n"
      "*DefaultPdfPreprocess: " +
      pdf +
      "\n*PdfPreprocess no/No: \"0\"\n*PdfPreprocess yes/Yes: \"1\"\n*CloseUI: *PdfPreprocess\n";
  return text;
}

TempFile::TempFile(std::string_view contents, const char* suffix) {
  std::string name = "/tmp/velka-test-XXXXXX";
  name += suffix;
  const int fd = mkstemps(name.data(), static_cast<int>(std::string_view(suffix).size()));
  path_ = name;
  if (fd < 0) return;
  if (std::FILE* file = fdopen(fd, "wb")) {
    std::fwrite(contents.data(), 1, contents.size(), file);
    std::fclose(file);
  }
}

bool TempFile::exists(const std::string& path) {
  return access(path.c_str(), F_OK) == 0;
}

TempFile::~TempFile() {
  unlink(path_.c_str());
}

}  // namespace velka::testing
