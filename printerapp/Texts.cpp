#include "Texts.h"

#include <array>
#include <sstream>
#include <string>

#include "OptionTexts.h"

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

// Into the library's own texts, where it has such in that language: pages are in one. A file
// that has a language does not stay, for the library would add that to what it knows of a
// printer each time somebody asks, at the same time as others read it.
void load(pappl_system_t* system, const Model& model, const std::string& language) {
  if (papplSystemFindLoc(system, language.c_str()) == nullptr) return;
  papplSystemAddStringsData(system, kPath, language.c_str(), stringsOf(model, language).c_str());
  papplSystemRemoveResource(system, kPath);
}

}  // namespace

void addTexts(pappl_system_t* system, const std::string& names) {
  if (models().empty()) return;
  toldHost() = hostOf(system, names);
  const Model& model = models().front();
  for (const std::string& language : languagesOf(model)) load(system, model, language);
  // The library keeps a pointer to it.
  static const std::string english = stringsOf(model, kLanguage);
  papplSystemAddResourceData(system, kPath, "text/strings", english.data(), english.size());
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
