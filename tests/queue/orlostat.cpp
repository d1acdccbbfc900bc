// orlostat FILE: what a command stream of the Orlo model puts on paper, in the
// lines of velkaview --stats. A dot struck twice counts once.
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

#include "orlo/PrintingHead.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::ifstream file(argv[1], std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  if (!file) return 1;
  const std::vector<uint8_t> stream(bytes.begin(), bytes.end());
  const auto paper = velka::orlotest::printStream(stream, velka::orlotest::Feed::Back);
  if (!paper.complaint.empty()) {
    (void)std::fprintf(stderr, "%s: %s\n", argv[1], paper.complaint.c_str());
    return 1;
  }
  std::printf("pages      %d\n", paper.pages);
  std::printf("black dots %" PRId64 "\n", paper.blackDots);
  std::printf("red dots   %" PRId64 "\n", paper.redDots);
  return 0;
}
