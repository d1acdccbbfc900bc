#include "Views.h"

#include "OptionCheck.h"
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
  const int status = judge(checkOptions(arguments.ppd, arguments.options));
  if (status != kDone || arguments.action != Action::Sheet) return status;
  return judge(checkSheet(arguments.ppd, arguments.sheetOption, arguments.sheetValues));
}

}  // namespace

int show(const Arguments& arguments) {
  if (const int status = checkSettings(arguments); status != kDone) return status;
  switch (arguments.action) {
    case Action::List:
      return listCommands(arguments);
    case Action::Stats:
      return tellStats(arguments);
    case Action::Diff:
      return tellDifference(arguments);
    case Action::Sheet:
      return drawSheet(arguments);
    case Action::Draw:
      break;
  }
  return drawPages(arguments);
}

}  // namespace velka::view
