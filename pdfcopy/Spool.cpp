#include "Spool.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "StandardOutput.h"

namespace velka {
namespace {

constexpr size_t kPiece = 65536;

bool writeWhole(int fd, std::span<const uint8_t> bytes) noexcept {
  return writeAll(fd, bytes) == bytes.size();
}

}  // namespace

std::string readHead(int fd, size_t size) {
  std::string head(size, '\0');
  head.resize(readAll(fd, {reinterpret_cast<uint8_t*>(head.data()), head.size()}));
  return head;
}

Passage passOn(int from, int to) noexcept {
  std::array<uint8_t, kPiece> piece = {};
  for (;;) {
    const ssize_t n = readSome(from, piece);
    if (n < 0) return Passage::CannotRead;
    if (n == 0) return Passage::Complete;
    if (!writeWhole(to, {piece.data(), static_cast<size_t>(n)})) return Passage::CannotWrite;
  }
}

Passage passOn(std::string_view head, int from, int to) noexcept {
  if (!writeWhole(to, {reinterpret_cast<const uint8_t*>(head.data()), head.size()}))
    return Passage::CannotWrite;
  return passOn(from, to);
}

UniqueFd namelessFile() {
  const char* folder = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): one thread reads it
  std::string name = std::string(folder == nullptr ? "/tmp" : folder) + "/velkapdfcopy.XXXXXX";
  UniqueFd file(mkostemp(name.data(), O_CLOEXEC));
  if (file) unlink(name.c_str());
  return file;
}

}  // namespace velka
