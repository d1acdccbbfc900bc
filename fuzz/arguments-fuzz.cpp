// Command lines of velkaview: the input's lines are its words.
#include <unistd.h>

#include <cmath>
#include <cstdio>

#include "ArgumentCheck.h"
#include "Arguments.h"
#include "Input.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

using namespace velka::view;
using velka::fuzz::require;

std::vector<std::string> wordsOf(const std::string& text) {
  std::vector<std::string> words = {"velkaview"};
  for (size_t at = 0; at < text.size() && words.size() < 64;) {
    const size_t end = std::min(text.find('\n', at), text.size());
    words.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return words;
}

bool isSound(const std::optional<double>& number) {
  return !number || (std::isfinite(*number) && *number > 0);
}

void lookAt(const Arguments& arguments) {
  require(!whatContradicts(arguments));
  require(isSound(arguments.scale) && isSound(arguments.dpi) && isSound(arguments.width));
  if (arguments.pages)
    require(arguments.pages->first >= 1 && arguments.pages->first <= arguments.pages->last);
  for (const SheetOption& option : arguments.sheet)
    require(!option.name.empty() && !option.values.empty());
  require(arguments.sheet.size() <= 2);
  (void)formatOf(arguments);
}

}  // namespace

// getopt's own complaints would fill the fuzzer's output.
int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  opterr = 0;
  stderr = std::fopen("/dev/null", "w");
  return stderr != nullptr ? 0 : 1;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> words = wordsOf({reinterpret_cast<const char*>(data), size});
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  const auto result = readArguments(static_cast<int>(words.size()), pointers.data());
  if (const auto* arguments = std::get_if<Arguments>(&result)) lookAt(*arguments);
  if (const auto* answer = std::get_if<Answer>(&result)) require(!answer->text.empty());
  if (const auto* error = std::get_if<UsageError>(&result)) require(!error->text.empty());
  return 0;
}
