// velkaview: the paper that a command stream prints, on the screen.
#include <cstdio>
#include <new>
#include <string>
#include <variant>

#include "Arguments.h"
#include "Outcome.h"
#include "Serve.h"
#include "Views.h"

namespace {

using namespace velka::view;

int run(int argc, char** argv) {
  auto arguments = readArguments(argc, argv);
  if (const auto* answer = std::get_if<Answer>(&arguments)) {
    (void)std::fputs(answer->text.c_str(), stdout);
    return std::fflush(stdout) == 0 ? kDone : kFailed;
  }
  if (const auto* error = std::get_if<UsageError>(&arguments)) {
    (void)std::fprintf(stderr, "velkaview: %s\nTry 'velkaview --help' for more.\n",
                       error->text.c_str());
    return kWrongUse;
  }
  if (const int status = prepare(std::get<Arguments>(arguments)); status != kDone) return status;
  const Arguments& wanted = std::get<Arguments>(arguments);
  return wanted.action == Action::Serve ? velka::serve::serve(wanted) : show(wanted);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    (void)std::fputs("velkaview: not enough memory\n", stderr);
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "velkaview: %s\n", error.what());
  }
  return kFailed;
}
