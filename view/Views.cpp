#include "Views.h"

namespace velka::view {

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
    case Action::Draw:
      break;
  }
  return drawPages(arguments);
}

}  // namespace velka::view
