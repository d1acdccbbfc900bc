#include "Readings.h"

#include <cstdio>

namespace velka::calibrationtest {
namespace {

int count = 0;

}  // namespace

void complain(const std::string& text) {
  (void)std::fprintf(stderr, "%s\n", text.c_str());
  ++count;
}

int complaints() {
  return count;
}

}  // namespace velka::calibrationtest
