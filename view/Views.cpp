#include "Views.h"

#include "OptionCheck.h"
#include "OptionsFile.h"
#include "Ppd.h"
#include "Progress.h"
#include "Report.h"

namespace velka::view {
namespace {

int judge(const OptionCheck& check) {
  if (check.trouble) return fail(*check.trouble);
  if (check.wrong) return fail(*check.wrong, kWrongUse);
  for (const std::string& warning : check.warnings) (void)fail(warning);
  return kDone;
}

// Before anything runs: a misspelt option would print like none at all.
int checkSettings(const Arguments& arguments) {
  if (arguments.ppd.empty()) return kDone;
  if (!arguments.anyPpd) {
    if (auto problem = otherMaker(arguments.ppd)) return fail(*problem, kWrongUse);
  }
  int status = judge(checkOptions(arguments.ppd, arguments.options));
  for (const SheetOption& option : arguments.sheet) {
    if (status == kDone) status = judge(checkSheet(arguments.ppd, option.name, option.values));
  }
  return status;
}

}  // namespace

int prepare(Arguments& arguments) {
  askForProgress(arguments.progress);
  if (auto problem = takeOptionsFile(arguments)) return fail(*problem);
  return checkSettings(arguments);
}

int show(const Arguments& arguments) {
  switch (arguments.action) {
    case Action::List:
      return listCommands(arguments);
    case Action::Stats:
      return tellStats(arguments);
    case Action::Diff:
      return tellDifference(arguments);
    case Action::Sheet:
      return drawSheet(arguments);
    case Action::Calibration:
      return writeCalibration(arguments);
    case Action::Serve:  // another room's
    case Action::Draw:
      break;
  }
  return drawPages(arguments);
}

}  // namespace velka::view
