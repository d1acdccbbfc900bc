#include "OptionsFile.h"

#include <algorithm>
#include <cstdint>

#include "Files.h"

namespace velka::view {
namespace {

constexpr std::string_view kBlanks = " \t\n";
constexpr std::string_view kQuotes = "'\"";
constexpr size_t kMostFileBytes = size_t{1} << 20;

bool isPlain(char c) {
  constexpr std::string_view kAlso = "._-+=,:/@%";
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  return letter || (c >= '0' && c <= '9') || kAlso.find(c) != std::string_view::npos;
}

// The words of a text, quotes and backslashes taken away.
class WordReader {
 public:
  explicit WordReader(std::string_view text) : text_(text) {}

  // None behind the last one, or where a quote does not end.
  std::optional<std::string> next() {
    at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
    if (at_ == text_.size()) return std::nullopt;
    std::string word;
    while (at_ < text_.size() && kBlanks.find(text_[at_]) == std::string_view::npos) take(word);
    return open_ ? std::nullopt : std::optional(word);
  }
  [[nodiscard]] bool isOpen() const { return open_; }

 private:
  // The next character, or all up to the end of a quote.
  void take(std::string& word) {
    char c = text_[at_++];
    if (kQuotes.find(c) != std::string_view::npos) {
      const size_t end = text_.find(c, at_);
      open_ = end == std::string_view::npos;
      word.append(text_.substr(at_, open_ ? 0 : end - at_));
      at_ = open_ ? text_.size() : end + 1;
      return;
    }
    if (c == '\\' && at_ < text_.size()) c = text_[at_++];
    word.push_back(c);
  }

  std::string_view text_;
  size_t at_ = 0;
  bool open_ = false;
};

}  // namespace

std::string optionText(const std::string& name, const std::string& value) {
  std::string text = name + "=";
  for (const char c : value) {
    if (kBlanks.find(c) != std::string_view::npos || kQuotes.find(c) != std::string_view::npos ||
        c == '\\') {
      text.push_back('\\');
    }
    text.push_back(c);
  }
  return text;
}

std::string quoted(const std::string& word) {
  if (!word.empty() && std::ranges::all_of(word, isPlain)) return word;
  std::string text(1, '\'');
  for (const char c : word) {
    if (c == '\'') text.append("'\\'");
    text.push_back(c);
  }
  text.push_back('\'');
  return text;
}

std::string asArguments(const Settings& settings, std::string_view between) {
  std::string text;
  for (const auto& [name, value] : settings) {
    if (!text.empty()) text += between;
    text.append("-o ").append(quoted(optionText(name, value)));
  }
  return text;
}

std::variant<std::string, WrongFile> readOptionsText(std::string_view text) {
  WordReader words(text);
  std::string options;
  bool wanted = false;  // behind "-o"
  while (auto word = words.next()) {
    if (!wanted && *word == "-o") {
      wanted = true;
      continue;
    }
    if (!wanted && !word->starts_with("-o")) {
      return WrongFile{"'" + *word + "' does not stand behind -o"};
    }
    if (!options.empty()) options.push_back(' ');
    options.append(*word, wanted ? 0 : 2);
    wanted = false;
  }
  if (words.isOpen()) return WrongFile{"a quote does not end"};
  if (wanted) return WrongFile{"nothing stands behind the last -o"};
  return options;
}

Problem takeOptionsFile(Arguments& arguments) {
  if (arguments.optionsFile.empty()) return std::nullopt;
  std::vector<uint8_t> bytes;
  if (auto problem = readFile(arguments.optionsFile, bytes, kMostFileBytes)) return problem;
  const auto read = readOptionsText({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  if (const auto* wrong = std::get_if<WrongFile>(&read)) {
    return arguments.optionsFile + ": " + wrong->why;
  }
  arguments.options = std::get<std::string>(read) + " " + arguments.options;
  return std::nullopt;
}

}  // namespace velka::view
