#include "Version.h"
#include "rastovelka.h"

int main(int argc, char* argv[]) {
  if (velka::answersVersion(argc, argv, "rastovelka")) return 0;
  return RunFilter(argc, argv);
}
