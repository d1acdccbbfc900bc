#include "Serve.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

#include "Answers.h"
#include "Door.h"
#include "Files.h"
#include "Gate.h"
#include "ProgramStart.h"
#include "Report.h"
#include "Secret.h"
#include "TestPage.h"

namespace velka::serve {
namespace {

using view::Arguments;
using view::Problem;

Problem load(const Arguments& arguments, Document& document) {
  document.ppd = arguments.ppd;
  if (arguments.files.empty()) {
    document.name = "velka-test-page.pdf";
    document.bytes = testPage();
    return std::nullopt;
  }
  const std::string& file = arguments.files[0];
  document.name = file == "-" ? "stdin" : std::filesystem::path(file).filename().string();
  return view::readFile(file, document.bytes);
}

Subject subjectOf(const Arguments& arguments, const PrinterOptions& options, Workbench& bench) {
  const std::string file = arguments.files.empty() ? "" : arguments.files[0];
  return {options,
          bench,
          file.empty() ? "test page"
                       : (file == "-" ? "standard input" : std::filesystem::path(file).filename()),
          file.empty() || file == "-" ? "FILE" : file,
          std::filesystem::path(arguments.ppd).filename(),
          arguments.pages ? arguments.pages->first : 1};
}

// In the user's own surroundings, and not waited for.
void openInBrowser(const std::string& address, const view::SignalsHeld& held) {
  std::string program = "xdg-open";
  std::string word = address;
  const std::array<char*, 3> words{program.data(), word.data(), nullptr};
  ProgramStart start;
  start.holdBack(held.before());
  start.inOwnGroup();
  pid_t child = 0;
  const int error = start.runFromPath(child, program.c_str(), words.data(), environ);
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the worst is a wrong word
  if (error != 0) (void)view::fail(program + ": " + std::strerror(error));
}

void waitForSignal() {
  sigset_t wanted;
  sigemptyset(&wanted);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaddset(&wanted, signal);
  int which = 0;
  while (sigwait(&wanted, &which) != 0) {
  }
}

// Prints the page that a browser will ask for first while it starts.
class WarmUp {
 public:
  WarmUp(Workbench& bench, Wish wish)
      : thread_([&bench, wish = std::move(wish)] { print(bench, wish); }) {}
  ~WarmUp() { thread_.join(); }
  WarmUp(const WarmUp&) = delete;
  WarmUp& operator=(const WarmUp&) = delete;

 private:
  // What is wrong the page tells when it asks again.
  static void print(Workbench& bench, const Wish& wish) noexcept {
    try {
      (void)bench.print(wish);
    } catch (const std::exception&) {
      return;
    }
  }

  std::thread thread_;
};

int run(const Arguments& arguments, const Document& document, const PrinterOptions& options) {
  const view::SignalsHeld held;  // before any thread, so that they come to us alone
  const std::string secret = newSecret();
  if (secret.empty()) return view::fail("the system gives no random numbers");
  Turns turns;
  Workbench bench(document, options, turns, held);
  const Answers answers(subjectOf(arguments, options, bench));
  Door door(arguments.port);
  if (!door.trouble().empty()) return view::fail(door.trouble());
  const Gate gate(secret, door.port());
  door.open([&](const Request& request) {
    std::string rest;
    if (auto refusal = gate.refuse(request, rest)) return *refusal;
    return answers.to(rest, request);
  });
  if (!door.trouble().empty()) return view::fail(door.trouble());
  const uint64_t page = arguments.pages ? arguments.pages->first : 1;
  const WarmUp warm(bench, {options.initial(), page, "", 0});
  (void)std::printf("%s\n", gate.address().c_str());
  if (view::flushed(view::kDone) == view::kDone) {
    if (arguments.open) openInBrowser(gate.address(), held);
    waitForSignal();
  }
  turns.end();
  door.close();
  return view::kDone;
}

}  // namespace

int serve(const Arguments& arguments) {
  Document document;
  if (auto problem = load(arguments, document)) return view::fail(*problem);
  const PrinterOptions options(arguments.ppd, arguments.options);
  if (options.trouble()) return view::fail(*options.trouble());
  return run(arguments, document, options);
}

}  // namespace velka::serve
