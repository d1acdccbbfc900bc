// PPD files made for a test.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velka::testing {

/// A small PPD: a model number and options with one marked default choice each.
struct PpdText {
  int modelNumber = 1;
  /// Keyword and code of the default choice.
  std::vector<std::pair<std::string, std::string>> options;
  /// Marks "PdfPreprocess" as yes.
  bool pdfPreprocess = false;
  /// That of this build unless a test is about others; empty for none.
  std::string fileVersion = VELKA_PPD_VERSION;
};

std::string ppdText(const PpdText& ppd);

/// A file with the given contents that is removed when the object goes.
class TempFile {
 public:
  explicit TempFile(std::string_view contents, const char* suffix = "");
  ~TempFile();
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }
  static bool exists(const std::string& path);

 private:
  std::string path_;
};

}  // namespace velka::testing
