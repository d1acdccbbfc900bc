#include "rastovelka.h"

int main(int argc, char* argv[]) {
  return RunFilter(argc, argv);
}
