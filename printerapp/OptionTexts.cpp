#include "OptionTexts.h"

#include <map>
#include <sstream>

namespace velka::app {
namespace {

// By "Translation OPTION" and "OPTION CHOICE".
using Translations = std::map<std::string, std::string, std::less<>>;

// CUPS's reader keeps the language of the process alone. The compiler writes a text a line,
// as in *de.Translation RedMinValue/Text: ""
Translations translationsTo(std::string_view language, std::string_view ppd) {
  Translations texts;
  std::string start = "*";
  start.append(language).append(".");
  std::istringstream lines{std::string(ppd)};
  for (std::string line; std::getline(lines, line);) {
    const size_t text = line.find('/');
    const size_t end = line.rfind(": \"\"");
    if (!line.starts_with(start) || text == std::string::npos || end == std::string::npos) continue;
    if (text < end)
      texts[line.substr(start.size(), text - start.size())] = line.substr(text + 1, end - text - 1);
  }
  return texts;
}

std::string escaped(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += c;
  }
  return out;
}

void addLine(std::string& lines, const std::string& key, std::string_view text) {
  lines.append("\"").append(key).append("\" = \"").append(escaped(text)).append("\";\n");
}

}  // namespace

std::vector<std::string> languagesOf(const Model& model) {
  constexpr std::string_view kStart = "*cupsLanguages: \"";
  const size_t start = model.ppd.find(kStart);
  if (start == std::string_view::npos) return {};
  const std::string_view rest = model.ppd.substr(start + kStart.size());
  std::istringstream names{std::string(rest.substr(0, rest.find('"')))};
  std::vector<std::string> languages;
  for (std::string name; names >> name;) languages.push_back(name);
  return languages;
}

std::string stringsOf(const Model& model, std::string_view language) {
  const Translations texts = translationsTo(language, model.ppd);
  const auto translated = [&](const std::string& key, const std::string& english) {
    const auto found = texts.find(key);
    return found == texts.end() ? english : found->second;
  };
  std::string lines;
  for (const VendorOption& option : model.options) {
    addLine(lines, option.name, translated("Translation " + option.name, option.text));
    for (const Choice& choice : option.choices)
      addLine(lines, option.name + "." + choice.name,
              translated(option.name + " " + choice.name, choice.text));
  }
  return lines;
}

}  // namespace velka::app
