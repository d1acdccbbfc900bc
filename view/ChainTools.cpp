#include "ChainTools.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "Process.h"

namespace velka::view {
namespace {

namespace fs = std::filesystem;

constexpr const char* kUnpacking = "gziptoany";

bool isProgram(const std::string& path) {
  return access(path.c_str(), X_OK) == 0;
}

bool isOnPath(const std::string& name) {
  const char* path = std::getenv("PATH");  // NOLINT(concurrency-mt-unsafe): one thread
  std::string rest = path == nullptr ? "" : path;
  while (!rest.empty()) {
    const size_t colon = rest.find(':');
    const std::string folder = rest.substr(0, colon);
    if (isProgram((folder.empty() ? "." : folder) + "/" + name)) return true;
    rest = colon == std::string::npos ? "" : rest.substr(colon + 1);
  }
  return false;
}

// Its messages are ours, whoever looks at them.
const std::vector<std::pair<std::string, std::string>> kOurLanguage = {{"LC_ALL", "C.UTF-8"}};

std::string firstLine(const std::string& name) {
  std::string line;
  std::ifstream file(name);
  (void)std::getline(file, line);
  return line;
}

bool isCompressed(const std::string& document) {
  return firstLine(document).starts_with("\x1f\x8b");
}

}  // namespace

Problem missingPdfTool() {
  for (const char* tool : {"pdfinfo", "pdftoppm"}) {
    if (!isOnPath(tool)) {
      return std::string(tool) +
             " is not on the PATH, and PdfPreprocess=yes needs it (package poppler-utils)";
    }
  }
  return std::nullopt;
}

// Where the print system keeps its filters; its own tool knows.
std::string ChainTools::filterFolder() {
  for (const char* tool : {"/usr/bin/cups-config", "/usr/local/bin/cups-config"}) {
    const Step ask{tool,        {"--serverbin"},       kOurLanguage,
                   "/dev/null", folder_ / "serverbin", folder_ / "errors"};
    if (!isProgram(tool) || runStep(ask, held_)) continue;
    const std::string line = firstLine(ask.output);
    if (!line.empty()) return line + "/filter/";
  }
  return "/usr/lib/cups/filter/";
}

Problem ChainTools::find() {
  system_ = filterFolder();
  own_ = system_ + "rastovelka";
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  // Beside us, in the build tree, and where an installation with a prefix of its own
  // has put it.
  for (const fs::path& place : {here / "rastovelka", here / "../filter/rastovelka",
                                here / VELKA_FILTERS_FROM_BIN / "rastovelka"}) {
    if (isProgram(place)) {
      own_ = place;
      break;
    }
  }
  if (isProgram(own_)) return std::nullopt;
  return own_ + " is missing, and the chain needs it";
}

std::string ChainTools::serverFolder() const {
  return fs::path(system_).parent_path().parent_path();
}

Problem ChainTools::missing(const std::string& filter) const {
  const std::string path = pathOf(filter);
  const bool plain = filter.find('/') == std::string::npos;
  if (plain && isProgram(path)) return std::nullopt;
  return path + " is missing, and the chain needs it";
}

Problem ChainTools::usualWay(const std::string& document, std::vector<std::string>& filters) const {
  if (!firstLine(document).starts_with("%PDF")) {
    return "cupsfilter (package cups) is missing, and without it only PDFs can be printed";
  }
  filters = {"pdftopdf", missing("gstoraster") ? "pdftoraster" : "gstoraster"};
  return std::nullopt;
}

Problem ChainTools::findWay(const std::string& document, const std::string& type,
                            std::vector<std::string>& filters) {
  std::string tool;
  for (const char* place :
       {"/usr/sbin/cupsfilter", "/usr/bin/cupsfilter", "/usr/local/sbin/cupsfilter"}) {
    if (tool.empty() && isProgram(place)) tool = place;
  }
  if (tool.empty()) return usualWay(document, filters);
  Step ask{tool,
           {"--list-filters", "-m", "application/vnd.cups-raster"},
           kOurLanguage,
           "/dev/null",
           folder_ / "way",
           folder_ / "errors"};
  if (!type.empty()) ask.arguments.insert(ask.arguments.end(), {"-i", type});
  ask.arguments.push_back(document);
  ask.mayBeSilent = true;  // a raster needs no filter
  if (auto problem = runStep(ask, held_)) {
    // The tool names the file as it stands in our folder.
    const std::string folder = fs::path(document).parent_path().string() + "/";
    const size_t at = problem->find(folder);
    if (at != std::string::npos) problem->erase(at, folder.size());
    return problem;
  }
  std::ifstream lines(ask.output);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) filters.push_back(line);
  }
  // The tool overlooks that a document is compressed where it is a small one.
  const bool unpacks = !filters.empty() && filters.front() == kUnpacking;
  if (!unpacks && isCompressed(document)) filters.insert(filters.begin(), kUnpacking);
  return std::nullopt;
}

}  // namespace velka::view
