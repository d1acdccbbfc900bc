// velkastat [FILE]: what a command stream of the standard model holds. Reads
// standard input when no file is named. Exit status 0, 1 when the stream is
// malformed or cannot be read, 2 when called wrongly.

#include <array>
#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "StreamStat.h"

namespace {

struct Close {
  void operator()(std::FILE* file) const {
    if (file != stdin) (void)std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, Close>;

bool readAll(std::FILE* file, std::vector<std::uint8_t>& bytes) {
  std::array<std::uint8_t, 65536> chunk{};
  std::size_t got = 0;
  while ((got = std::fread(chunk.data(), 1, chunk.size(), file)) > 0) {
    bytes.insert(bytes.end(), chunk.begin(), chunk.begin() + static_cast<std::ptrdiff_t>(got));
  }
  return std::ferror(file) == 0;
}

void print(const velka::StreamStat& stat, std::size_t bytes) {
  std::printf("pages      %" PRIu64 "\n", stat.pages);
  std::printf("bands      %" PRIu64 "\n", stat.bands);
  std::printf("black dots %" PRIu64 "\n", stat.blackDots);
  std::printf("red dots   %" PRIu64 "\n", stat.redDots);
  std::printf("blocks     %" PRIu64 "\n", stat.blocks);
  std::printf("bytes      %zu\n", bytes);
}

int run(const char* name, std::FILE* file) {
  std::vector<std::uint8_t> bytes;
  if (!readAll(file, bytes)) {
    (void)std::fprintf(stderr, "velkastat: %s: %s\n", name, std::strerror(errno));
    return 1;
  }
  velka::StreamStat stat;
  if (const auto fault = velka::readStream(bytes, stat)) {
    (void)std::fprintf(stderr, "velkastat: %s: malformed at offset %zu: %s\n", name, fault->offset,
                       fault->what.c_str());
    return 1;
  }
  print(stat, bytes.size());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    (void)std::fputs("usage: velkastat [FILE]\n", stderr);
    return 2;
  }
  if (argc < 2) return run("standard input", stdin);
  const File file(std::fopen(argv[1], "rb"));
  if (!file) {
    (void)std::fprintf(stderr, "velkastat: %s: %s\n", argv[1], std::strerror(errno));
    return 1;
  }
  return run(argv[1], file.get());
}
