#include "Guard.h"
#include "Version.h"

int main(int argc, char* argv[]) {
  if (velka::answersVersion(argc, argv, "velkaguard")) return 0;
  return velka::runGuard(argc, argv);
}
