#include "Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>

namespace velka::view {
namespace {

// There is one standard error.
struct Line {
  bool wanted = false;
  bool shown = false;
  std::string what;
};

Line& line() {
  static Line only;
  return only;
}

// A text longer than the line would leave its first half behind.
size_t widthOfTerminal() {
  constexpr size_t kUsual = 80;
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : kUsual;
}

void show(const std::string& text) {
  const std::string all = "velkaview: " + text;
  if (isatty(STDERR_FILENO) == 1) {
    clearProgress();
    (void)std::fprintf(stderr, "%s", all.substr(0, widthOfTerminal() - 1).c_str());
    (void)std::fflush(stderr);
    line().shown = true;
  } else if (line().wanted) {
    (void)std::fprintf(stderr, "%s\n", all.c_str());
  }
}

}  // namespace

void askForProgress(bool wanted) {
  line().wanted = wanted;
}

void tellProgress(const std::string& what) {
  line().what = what;
  show(what);
}

void tellStep(const std::string& step) {
  show(line().what.empty() ? step : line().what + ": " + step);
}

void clearProgress() {
  if (line().shown) (void)std::fputs("\r\033[K", stderr);
  line().shown = false;
}

}  // namespace velka::view
