#include "Texts.h"

#include <array>
#include <sstream>
#include <string>

#include "Model.h"

namespace velka::app {
namespace {

constexpr const char* kPath = "/options.strings";
constexpr const char* kLanguage = "en";
constexpr const char* kLocal = "localhost";

std::string& toldHost() {
  static std::string host = kLocal;
  return host;
}

std::string hostOf(pappl_system_t* system, const std::string& names) {
  std::istringstream list(names);
  std::string told = kLocal;
  for (std::string name; told == kLocal && std::getline(list, name, ',');) told = name;
  if (told != "*") return told;
  std::array<char, 256> own = {};
  return papplSystemGetHostName(system, own.data(), own.size()) == nullptr ? kLocal : own.data();
}

}  // namespace

void addTexts(pappl_system_t* system, const std::string& names) {
  if (models().empty()) return;
  toldHost() = hostOf(system, names);
  // The library keeps a pointer to it.
  static const std::string lines = stringsOf(models().front());
  papplSystemAddStringsData(system, kPath, kLanguage, lines.c_str());
  // The texts are loaded. For a file that has a language the library would add that to what it
  // knows of a printer each time somebody asks, at the same time as others read it.
  papplSystemRemoveResource(system, kPath);
  papplSystemAddResourceData(system, kPath, "text/strings", lines.data(), lines.size());
}

void tellTexts(pappl_system_t* system, ipp_t* attributes) {
  std::array<char, 512> uri = {};
  httpAssembleURI(HTTP_URI_CODING_ALL, uri.data(), static_cast<int>(uri.size()), "http", nullptr,
                  toldHost().c_str(), papplSystemGetHostPort(system), kPath);
  ippAddString(attributes, IPP_TAG_PRINTER, IPP_TAG_LANGUAGE, "printer-strings-languages-supported",
               nullptr, kLanguage);
  ippAddString(attributes, IPP_TAG_PRINTER, IPP_TAG_URI, "printer-strings-uri", nullptr,
               uri.data());
}

}  // namespace velka::app
