#include "PrinterOptions.h"

#include <cups/cups.h>

#include <algorithm>
#include <array>
#include <span>

#include "InitalizeOemCfg.h"
#include "MarkedOptions.h"

namespace velka::serve {
namespace {

// The options that the filters before ours look at; PageRegion says what PageSize does.
constexpr std::array<std::string_view, 4> kOfRaster{"PageSize", "Resolution", "ColorModel",
                                                    "PdfPreprocess"};
constexpr std::string_view kInstallable = "InstallableOptions";
constexpr std::string_view kSecondName = "PageRegion";

template <typename Range>
auto* byName(Range& range, const std::string& name) {
  const auto found = std::ranges::find(range, name, &std::ranges::range_value_t<Range>::name);
  return found == range.end() ? nullptr : &*found;
}

const std::string* valueIn(const Settings& settings, const std::string& keyword) {
  const auto found = std::ranges::find(settings, keyword, &Settings::value_type::first);
  return found == settings.end() ? nullptr : &found->second;
}

}  // namespace

PrinterOptions::PrinterOptions(const std::string& ppd, const std::string& options)
    : ppd_(view::openPpd(ppd, trouble_)) {
  if (!ppd_) return;
  (void)ppdLocalize(ppd_.get());
  ppdMarkDefaults(ppd_.get());
  for (const ppd_group_t& group : std::span(ppd_->groups, static_cast<size_t>(ppd_->num_groups))) {
    if (kInstallable != group.name) takeGroup(group);
  }
  takeCommandLine(options);
}

void PrinterOptions::takeGroup(const ppd_group_t& group) {
  OptionGroup taken{group.text, {}};
  for (const ppd_option_t& option :
       std::span(group.options, static_cast<size_t>(group.num_options))) {
    if (kSecondName == option.keyword) continue;
    PrinterOption one{option.keyword, option.text, option.defchoice, {}};
    for (const ppd_choice_t& choice :
         std::span(option.choices, static_cast<size_t>(option.num_choices))) {
      const bool hidden = ppdInstallableConflict(ppd_.get(), option.keyword, choice.choice) != 0;
      // A size of one's own has a name that says how large it is.
      const bool custom = std::string_view(choice.choice) == "Custom";
      if (!hidden && !custom) one.choices.push_back({choice.choice, choice.text});
    }
    taken.options.push_back(std::move(one));
  }
  if (!taken.options.empty()) groups_.push_back(std::move(taken));
}

// An old name of a choice gives way to the one that is shown.
std::string PrinterOptions::shownChoice(const std::string& keyword, const std::string& value) {
  const PrinterOption* option = find(keyword);
  ppd_option_t* raw = ppdFindOption(ppd_.get(), keyword.c_str());
  const ppd_choice_t* choice = raw == nullptr ? nullptr : ppdFindChoice(raw, value.c_str());
  if (option == nullptr || choice == nullptr) return value;
  for (const OptionChoice& shown : option->choices) {
    const ppd_choice_t* other = ppdFindChoice(raw, shown.name.c_str());
    if (shown.name == choice->choice) return shown.name;
    if (choice->code == nullptr || other == nullptr || other->code == nullptr) continue;
    if (*choice->code != 0 && std::string_view(choice->code) == other->code) return shown.name;
  }
  return value;
}

void PrinterOptions::takeCommandLine(const std::string& options) {
  cups_option_t* parsed = nullptr;
  const int count = cupsParseOptions(options.c_str(), 0, &parsed);
  Pairs own;
  for (const cups_option_t& option : std::span(parsed, static_cast<size_t>(count))) {
    const ppd_option_t* known = ppdFindOption(ppd_.get(), option.name);
    const std::string keyword = known == nullptr ? "" : known->keyword;
    const auto* shown = find(keyword);
    if (shown == nullptr) {
      common_.emplace_back(option.name, option.value);
      continue;
    }
    const std::string value = shownChoice(keyword, option.value);
    // A size of one's own, which only the command line can state.
    for (OptionGroup& group : groups_)
      for (PrinterOption& each : group.options)
        if (each.keyword == keyword && byName(each.choices, value) == nullptr)
          each.choices.push_back({value, value});
    own.emplace_back(keyword, value);
  }
  cupsFreeOptions(count, parsed);
  const auto settings = read(own);
  if (const auto* taken = std::get_if<Settings>(&settings)) initial_ = *taken;
}

const PrinterOption* PrinterOptions::find(const std::string& keyword) const {
  for (const OptionGroup& group : groups_) {
    const auto found = std::ranges::find(group.options, keyword, &PrinterOption::keyword);
    if (found != group.options.end()) return &*found;
  }
  return nullptr;
}

std::variant<Settings, Refusal> PrinterOptions::read(const Pairs& asked) const {
  for (const auto& [keyword, value] : asked) {
    const PrinterOption* option = find(keyword);
    if (option == nullptr) return Refusal{"the PPD has no option " + keyword};
    if (byName(option->choices, value) == nullptr) {
      return Refusal{std::string(keyword).append(" has no choice '").append(value).append("'")};
    }
  }
  Settings settings;
  for (const OptionGroup& group : groups_) {
    for (const PrinterOption& option : group.options) {
      const std::string* value = valueIn(asked, option.keyword);
      if (value != nullptr && *value != option.usual) settings.emplace_back(option.keyword, *value);
    }
  }
  return settings;
}

Settings PrinterOptions::whole(const Settings& settings) const {
  Settings all = common_;
  all.insert(all.end(), settings.begin(), settings.end());
  return all;
}

std::string PrinterOptions::jobText(const Settings& settings) const {
  std::string text;
  for (const auto& [name, value] : whole(settings))
    text.append(text.empty() ? "" : " ").append(view::optionText(name, value));
  return text;
}

Settings PrinterOptions::ofRaster(const Settings& settings) const {
  Settings some;
  std::ranges::copy_if(settings, std::back_inserter(some), [](const auto& setting) {
    return std::ranges::find(kOfRaster, setting.first) != kOfRaster.end();
  });
  return some;
}

tagOEMCFG PrinterOptions::record(const Settings& settings) const {
  const std::string text = jobText(settings);
  tagOEMCFG record = {};
  const std::scoped_lock lock(mutex_);
  markOptions(ppd_.get(), text.c_str());
  InitalizeOemCfg(&record, ppd_.get(), nullptr);
  return record;
}

std::string valueOf(const PrinterOptions& options, const Settings& settings,
                    const std::string& keyword) {
  if (const std::string* value = valueIn(settings, keyword)) return *value;
  const PrinterOption* option = options.find(keyword);
  return option == nullptr ? "" : option->usual;
}

Settings changed(const PrinterOptions& options, const Settings& settings,
                 const std::string& keyword, const std::string& value) {
  Pairs asked = {{keyword, value}};
  asked.insert(asked.end(), settings.begin(), settings.end());
  const auto read = options.read(asked);
  const auto* taken = std::get_if<Settings>(&read);
  return taken == nullptr ? settings : *taken;
}

}  // namespace velka::serve
