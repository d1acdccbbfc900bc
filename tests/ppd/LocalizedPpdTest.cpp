// The PPDs as a print dialog of another language shows them.
#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

#include "InitalizeOemCfg.h"

namespace velka::testing {
namespace {

using Ppd = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;
using Texts = std::map<std::string, std::string>;

const std::string kModels[] = {"standard", "orlo"};

// The program itself stays in the C locale, so that CUPS goes by the environment. It keeps
// of a PPD's languages the one at hand when the file is opened.
Ppd openIn(const std::string& locale, const std::string& model) {
  setenv("LC_MESSAGES", locale.c_str(), 1);
  setenv("LC_CTYPE", locale.c_str(), 1);
  Ppd ppd(ppdOpenFile((VELKA_PPDS "/velka-" + model + ".ppd").c_str()), ppdClose);
  EXPECT_NE(ppd, nullptr);
  if (!ppd) return ppd;
  ppdMarkDefaults(ppd.get());
  ppdLocalize(ppd.get());
  return ppd;
}

Ppd openInEnglish(const std::string& model) {
  return openIn("C", model);
}

std::string inQuotes(const std::string& line) {
  const size_t first = line.find('"') + 1;
  return line.substr(first, line.rfind('"') - first);
}

// English to the other language.
Texts translations(const std::string& language) {
  std::ifstream file(VELKA_TRANSLATIONS "/" + language + ".po");
  Texts texts;
  std::string id;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("msgid ")) id = inQuotes(line);
    if (line.starts_with("msgstr ")) texts[id] = inQuotes(line);
  }
  EXPECT_GT(texts.size(), 100);
  return texts;
}

// Calls for each group, option and choice of the dialog: what it is, its text. The sizes'
// custom one is the dialog's own.
void forEachText(ppd_file_t* ppd, const std::function<void(std::string, std::string)>& call) {
  for (const ppd_group_t& group : std::span(ppd->groups, static_cast<size_t>(ppd->num_groups))) {
    if (std::string(group.name) != "General") call(group.name, group.text);
    for (const ppd_option_t& option :
         std::span(group.options, static_cast<size_t>(group.num_options))) {
      const std::string keyword = option.keyword;
      if (keyword == "PageRegion") continue;
      call(keyword, option.text);
      for (const ppd_choice_t& choice :
           std::span(option.choices, static_cast<size_t>(option.num_choices))) {
        if (std::string(choice.choice) == "Custom") continue;
        call(keyword + " " + choice.choice, choice.text);
      }
    }
  }
}

Texts textsOf(ppd_file_t* ppd) {
  Texts texts;
  forEachText(ppd, [&](const std::string& what, const std::string& text) { texts[what] = text; });
  return texts;
}

bool isNumber(const std::string& text) {
  return text.find_first_not_of("0123456789.") == std::string::npos;
}

void expectTranslated(const std::string& language, const std::string& locale,
                      const std::string& model) {
  const Ppd english = openInEnglish(model);
  const Ppd foreign = openIn(locale, model);
  ASSERT_TRUE(english && foreign);
  Texts words = translations(language);
  Texts shown = textsOf(foreign.get());
  int translated = 0;
  forEachText(english.get(), [&](const std::string& what, const std::string& text) {
    EXPECT_EQ(shown[what], isNumber(text) ? text : words[text]) << language << ", " << what;
    translated += isNumber(text) ? 0 : 1;
  });
  EXPECT_GT(translated, 100);
}

TEST(LocalizedPpd, EveryTextComesThroughWholeInEveryLanguage) {
  const std::pair<std::string, std::string> languages[] = {
      {"de", "de_DE.UTF-8"}, {"es", "es_ES.UTF-8"}, {"fr", "fr_FR.UTF-8"},
      {"it", "it_IT.UTF-8"}, {"ja", "ja_JP.UTF-8"}, {"pl", "pl_PL.UTF-8"},
      {"pt", "pt_PT.UTF-8"}, {"ru", "ru_RU.UTF-8"}, {"zh_CN", "zh_CN.UTF-8"}};
  for (const auto& [language, locale] : languages) {
    for (const std::string& model : kModels) expectTranslated(language, locale, model);
  }
}

TEST(LocalizedPpd, ACountrysLanguageIsThatOfOthersWhoSpeakIt) {
  expectTranslated("pt", "pt_BR.UTF-8", "standard");
  expectTranslated("de", "de_AT.UTF-8", "orlo");
  expectTranslated("fr", "fr_CA.UTF-8", "orlo");
}

TEST(LocalizedPpd, AGermanDialogSpeaksGerman) {
  const Ppd ppd = openIn("de_DE.UTF-8", "standard");
  ASSERT_NE(ppd, nullptr);
  Texts texts = textsOf(ppd.get());
  EXPECT_EQ(texts["ColorPage"], "Farben");
  EXPECT_EQ(texts["OutputColorType"], "Drucken mit");
  EXPECT_EQ(texts["OutputColorType Black"], "Nur Schwarz");
  EXPECT_EQ(texts["BrightnessRed"], "Helligkeit Rot");
  EXPECT_EQ(texts["BrightnessRed 100"], "100 (unverändert)");
  EXPECT_EQ(texts["PageSize 57x100mm"], "Rolle 57 x 100 mm");
}

TEST(LocalizedPpd, AJapaneseDialogSpeaksJapanese) {
  const Ppd ppd = openIn("ja_JP.UTF-8", "orlo");
  ASSERT_NE(ppd, nullptr);
  Texts texts = textsOf(ppd.get());
  EXPECT_EQ(texts["ImageQualityPage"], "画質");
  EXPECT_EQ(texts["Resolution"], "解像度");
  EXPECT_EQ(texts["ColorRangeUseFor Red"], "赤");
  EXPECT_EQ(texts["HalftoneBlack Threshold"], "固定しきい値（バーコード、線画）");
  EXPECT_EQ(texts["PageSize FanFoldUS"], "米国連続紙");
}

// What the filter reads does not depend on the language that a dialog was in.
TEST(LocalizedPpd, CodesAreThoseOfTheEnglishOne) {
  for (const std::string& model : kModels) {
    const Ppd english = openInEnglish(model);
    const Ppd russian = openIn("ru_RU.UTF-8", model);
    ASSERT_TRUE(english && russian);
    for (const auto& [what, text] : textsOf(english.get())) {
      const size_t space = what.find(' ');
      if (space == std::string::npos) continue;
      const std::string keyword = what.substr(0, space);
      ppdMarkOption(english.get(), keyword.c_str(), what.substr(space + 1).c_str());
      ppdMarkOption(russian.get(), keyword.c_str(), what.substr(space + 1).c_str());
      EXPECT_STREQ(GetOptionChoiceCode(keyword.c_str(), russian.get()),
                   GetOptionChoiceCode(keyword.c_str(), english.get()))
          << what;
    }
  }
}

}  // namespace
}  // namespace velka::testing
