#include "Server.h"

#include <sys/stat.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>

#include "Driver.h"
#include "JobStart.h"
#include "Limits.h"
#include "MemoryFile.h"
#include "Model.h"
#include "PdfJob.h"
#include "SavedState.h"
#include "Spool.h"
#include "Texts.h"
#include "Version.h"
#include "Watch.h"

namespace velka::app {
namespace {

constexpr int kUsualPort = 8631;
constexpr int kMostImageSide = 65535;

class CommandOptions {
 public:
  CommandOptions(int count, cups_option_t* options) : count_(count), options_(options) {}

  [[nodiscard]] std::string text(const char* name, const std::string& usual) const {
    const char* value = cupsGetOption(name, count_, options_);
    return value == nullptr ? usual : value;
  }

  // Below 0 where it is no number.
  [[nodiscard]] int64_t number(const char* name, int64_t usual) const {
    const char* value = cupsGetOption(name, count_, options_);
    if (value == nullptr) return usual;
    int64_t number = 0;
    const char* end = value + std::strlen(value);
    const auto [ptr, error] = std::from_chars(value, end, number);
    return error == std::errc{} && ptr == end && number > 0 ? number : -1;
  }

 private:
  int count_;
  cups_option_t* options_;
};

bool refuse(const std::string& what) {
  std::fprintf(stderr, "velka-printer-app: %s\n", what.c_str());
  return false;
}

bool setLimits(const CommandOptions& options) {
  const int64_t pages = options.number("max-pages", limits.pages);
  const int64_t dots = options.number("max-dots", static_cast<int64_t>(limits.dots));
  if (pages < 0 || pages > INT32_MAX) return refuse("max-pages is no number of pages");
  if (dots < 0) return refuse("max-dots is no number of dots");
  limits.pages = static_cast<int>(pages);
  limits.dots = static_cast<uint64_t>(dots);
  return true;
}

bool readLevel(const std::string& name, pappl_loglevel_t& level) {
  constexpr const char* kNames[] = {"debug", "info", "warn", "error", "fatal"};
  for (int i = 0; i <= PAPPL_LOGLEVEL_FATAL; ++i) {
    if (name == kNames[i]) {
      level = static_cast<pappl_loglevel_t>(i);
      return true;
    }
  }
  return refuse("log-level is none of debug, info, warn, error and fatal");
}

// Each is a name to listen to; "*" is every address of this machine.
bool listen(pappl_system_t* system, const std::string& names) {
  size_t from = 0;
  while (from <= names.size()) {
    const size_t comma = std::min(names.find(',', from), names.size());
    const std::string name = names.substr(from, comma - from);
    if (!papplSystemAddListeners(system, name == "*" ? nullptr : name.c_str()))
      return refuse("cannot listen to " + name);
    from = comma + 1;
  }
  return true;
}

const std::string& stateFile() {
  static const std::string name = spoolFolder() + "/state";
  return name;
}

bool saveState(pappl_system_t* system, void* /*data*/) {
  return papplSystemSaveState(system, stateFile().c_str());
}

bool loadState(pappl_system_t* system) {
  std::ifstream file(stateFile());
  if (!file) return false;
  const UniqueFd text = fileOf(
      withJobsBegunAnew({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}));
  const std::string name = text ? "/proc/self/fd/" + std::to_string(text.get()) : stateFile();
  return papplSystemLoadState(system, name.c_str());
}

void tellVersion(pappl_system_t* system) {
  pappl_version_t versions = {};
  papplCopyString(versions.name, "velka-printer-app", sizeof versions.name);
  papplCopyString(versions.sversion, std::string(version()).c_str(), sizeof versions.sversion);
  int major = 0;
  int minor = 0;
  int patch = 0;
  if (std::sscanf(versions.sversion, "%5d.%5d.%5d", &major, &minor, &patch) == 3) {
    versions.version[0] = static_cast<unsigned short>(major);
    versions.version[1] = static_cast<unsigned short>(minor);
    versions.version[2] = static_cast<unsigned short>(patch);
  }
  papplSystemSetVersions(system, 1, &versions);
}

pappl_system_t* createSystem(const CommandOptions& options, pappl_loglevel_t level, int port) {
  constexpr pappl_soptions_t kOptions = PAPPL_SOPTIONS_MULTI_QUEUE | PAPPL_SOPTIONS_WEB_INTERFACE |
                                        PAPPL_SOPTIONS_WEB_SECURITY | PAPPL_SOPTIONS_WEB_REMOTE;
  const std::string log = options.text("log-file", "-");
  const std::string auth = options.text("auth-service", "");
  pappl_system_t* system = papplSystemCreate(
      kOptions, options.text("server-name", "Velka").c_str(), port, "_print,_universal",
      spoolFolder().c_str(), log.c_str(), level, auth.empty() ? nullptr : auth.c_str(), false);
  if (system == nullptr) (void)refuse("the server cannot be made");
  return system;
}

void setUp(pappl_system_t* system, const CommandOptions& options) {
  const std::string group = options.text("admin-group", "");
  if (!group.empty()) papplSystemSetAdminGroup(system, group.c_str());
  papplSystemSetMaxImageSize(system, limits.dots * 3, kMostImageSide, kMostImageSide);
  tellVersion(system);
  // The library's pages want one.
  papplSystemSetFooterHTML(system, "Velka, for two-colour dot-column printers");
  addTexts(system, options.text("listen-hostname", "localhost"));
  addPdfFilter(system);
  const auto all = drivers();
  papplSystemSetPrinterDrivers(system, static_cast<int>(all.size()), all.data(), matchDriver,
                               nameSupplies, describeDriver, nullptr);
  papplSystemAddTimerCallback(system, 0, 1, keepWatch, nullptr);
  papplSystemSetSaveCallback(system, saveState, nullptr);
  if (!loadState(system))
    papplSystemSetDNSSDName(system, options.text("server-name", "Velka").c_str());
  noteWaitingJobs(system);
}

}  // namespace

pappl_system_t* makeSystem(int count, cups_option_t* list, void* /*context*/) {
  const CommandOptions options(count, list);
  pappl_loglevel_t level = PAPPL_LOGLEVEL_INFO;
  const int64_t port = options.number("server-port", kUsualPort);
  if (port < 1 || port > 65535) return refuse("server-port is no port"), nullptr;
  if (!readLevel(options.text("log-level", "info"), level) || !setLimits(options)) return nullptr;
  // Whatever is made from here on is nobody else's business.
  umask(077);
  const std::string wrong = useSpoolFolder(options.text("spool-directory", usualSpoolFolder()));
  if (!wrong.empty()) return refuse(wrong), nullptr;
  if (models().empty()) return refuse("the printers' descriptions cannot be read"), nullptr;
  pappl_system_t* system = createSystem(options, level, static_cast<int>(port));
  if (system == nullptr) return nullptr;
  // One that a sub-command starts for itself is reached through a socket alone.
  const bool alone = options.text("private-server", "false") == "true";
  if (!alone && !listen(system, options.text("listen-hostname", "localhost"))) {
    papplSystemDelete(system);
    return nullptr;
  }
  setUp(system, options);
  return system;
}

}  // namespace velka::app
