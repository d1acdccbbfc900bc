// The yardstick of the watching filter's cost: reads standard input and passes it on, nothing
// else.
#include <unistd.h>

#include <array>

int main() {
  static std::array<char, 65536> piece;
  for (ssize_t n = 0; (n = read(STDIN_FILENO, piece.data(), piece.size())) > 0;)
    for (ssize_t done = 0; done < n;) {
      const ssize_t written =
          write(STDOUT_FILENO, piece.data() + done, static_cast<size_t>(n - done));
      if (written <= 0) return 1;
      done += written;
    }
  return 0;
}
