// replay FOLDER [ROUNDS]: runs a fuzz target without a fuzzer, on each file of a
// folder as it is and with ROUNDS rounds of damage (the same ones every time).
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
// Some targets have it.
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

using Input = std::vector<uint8_t>;

std::vector<std::filesystem::path> filesIn(const char* folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

Input contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class Damage {
 public:
  // Bytes changed, cut out, doubled; at times the end is lost.
  void apply(Input& input) {
    for (size_t i = 1 + below(4); i > 0 && !input.empty(); --i) {
      const auto at = input.begin() + static_cast<std::ptrdiff_t>(below(input.size()));
      const auto rest = static_cast<size_t>(input.end() - at);
      const auto end = at + static_cast<std::ptrdiff_t>(1 + below(std::min<size_t>(rest, 12)));
      const Input piece(at, end);
      switch (below(4)) {
        case 0:
          *at = static_cast<uint8_t>(random_());
          break;
        case 1:
          input.erase(at, end);
          break;
        case 2:
          input.insert(at, piece.begin(), piece.end());
          break;
        default:
          if (below(4) == 0) input.erase(at, input.end());
      }
    }
  }

 private:
  size_t below(size_t limit) { return random_() % limit; }

  std::mt19937 random_{20240607};  // NOLINT: the same damage each time
};

int run(const char* folder, int rounds) {
  Damage damage;
  const auto files = filesIn(folder);
  for (const auto& file : files) {
    const Input whole = contentOf(file);
    (void)LLVMFuzzerTestOneInput(whole.data(), whole.size());
    for (int round = 0; round < rounds; ++round) {
      Input input = whole;
      damage.apply(input);
      (void)LLVMFuzzerTestOneInput(input.data(), input.size());
    }
  }
  std::printf("%zu files, %d rounds of damage each\n", files.size(), rounds);
  return files.empty() ? EXIT_FAILURE : EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  try {
    if (LLVMFuzzerInitialize != nullptr && LLVMFuzzerInitialize(&argc, &argv) != 0) return 1;
    return run(argv[1], argc > 2 ? std::atoi(argv[2]) : 0);
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "replay: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
