// Job ids and paths: what is called plain must leave the shell nothing to act on, and
// command lines made of it must be whole or known to be cut.
#include "FixedText.h"
#include "Input.h"
#include "PlainNames.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

bool holdsOnly(const std::string& text, const char* allowed) {
  return text.find_first_not_of(allowed) == std::string::npos;
}

constexpr const char* kName = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
constexpr const char* kPath = "/abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";

void lookAtCommand(const std::string& id, const std::string& path, int page) {
  const FixedText command = formatText("pdftoppm -q -f %d -l %d %s /tmp/VK_TEMP_CUPS_%s", page,
                                       page, path.c_str(), id.c_str());
  const std::string text = command.text();
  const std::string whole = "pdftoppm -q -f " + std::to_string(page) + " -l " +
                            std::to_string(page) + " " + path + " /tmp/VK_TEMP_CUPS_" + id;
  require(text.size() < command.chars.size());
  require(command.cut == (whole.size() >= command.chars.size()));
  require(whole.compare(0, text.size(), text) == 0);
  Bytes buffer(command.chars.size(), 0x55);
  copyText(command, reinterpret_cast<char*>(buffer.data()));
  require(text == reinterpret_cast<const char*>(buffer.data()));
  if (!isPlainName(id.c_str()) || !isPlainPath(path.c_str())) return;
  require(text.find_first_of("\n\t\"'\\$`;&|<>(){}[]*?!#~") == std::string::npos);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const auto page = input.number<int>();
  const std::string id = input.text(input.byte()).c_str();  // NOLINT: up to the first zero
  const std::string path = input.rest().c_str();            // NOLINT
  require(isPlainName(id.c_str()) == holdsOnly(id, kName));
  require(isPlainPath(path.c_str()) == (!path.empty() && path[0] != '-' && holdsOnly(path, kPath)));
  const std::string prefix(kJobFilePrefix);
  require(isRemovable((prefix + id).c_str()) == holdsOnly(id, kName));
  if (path.rfind(prefix, 0) != 0) require(isRemovable(path.c_str()));
  lookAtCommand(id, path, page);
  return 0;
}
