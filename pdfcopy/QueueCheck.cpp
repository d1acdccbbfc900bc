#include "QueueCheck.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <string_view>

#include "MarkedOptions.h"

namespace velka {
namespace {

std::string environment(const char* name, const char* otherwise) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): one thread reads it
  return value == nullptr ? otherwise : value;
}

bool isProgram(const std::string& path) noexcept {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

// As the shell looks for it, which has a path of its own where there is none.
bool isOnPath(const std::string& tool) {
  const std::string path =
      environment("PATH", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin");
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find(':', start), path.size());
    const std::string folder = path.substr(start, end - start);
    if (isProgram((folder.empty() ? "." : folder) + "/" + tool)) return true;
    start = end + 1;
  }
  return false;
}

// A PPD without one is of somebody's own making.
std::string versionOf(ppd_file_t* ppd) {
  const ppd_attr_t* version = ppdFindAttr(ppd, "FileVersion", nullptr);
  return version == nullptr || version->value == nullptr ? VELKA_PPD_VERSION : version->value;
}

// The first two numbers; 0 for what is none.
std::array<unsigned, 2> numbersOf(std::string_view version) noexcept {
  std::array<unsigned, 2> numbers = {};
  const char* at = version.data();
  const char* const end = at + version.size();
  for (unsigned& number : numbers) {
    const auto [behind, error] = std::from_chars(at, end, number);
    if (error != std::errc() || behind == end || *behind != '.') break;
    at = behind + 1;
  }
  return numbers;
}

}  // namespace

std::string whyPagesWouldBeWhite(ppd_file_t* ppd) {
  for (const char* tool : {"pdfinfo", "pdftoppm"}) {
    if (!isOnPath(tool))
      return std::string("PdfPreprocess needs ") + tool +
             ", which is not on the PATH: install poppler-utils and print the job again";
  }
  // An older PPD may not have us started for every kind of document. Those jobs we never
  // see; the ones we do see tell of it. A newer one has all that these filters need.
  const std::string version = versionOf(ppd);
  if (numbersOf(version) >= numbersOf(VELKA_PPD_VERSION)) return {};
  // Without quotation marks, which the scheduler's log would have a backslash before.
  return "The PPD of this queue is older (" + version + ") than its filters (" + VELKA_PPD_VERSION +
         "), so pages could come out white. Print the job again after: " + "lpadmin -p " +
         environment("PRINTER", "QUEUE") + " -m velka/velka-" +
         (isOrloModel(ppd) ? "orlo" : "standard") + ".ppd";
}

}  // namespace velka
