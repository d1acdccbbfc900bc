#include "WorkFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "Files.h"

namespace velka::view {
namespace {

Problem writeAll(int file, const std::string& name, std::span<const uint8_t> bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = write(file, bytes.data() + done, bytes.size() - done);
    if (count < 0) return systemTrouble(name);
    done += static_cast<size_t>(count);
  }
  return std::nullopt;
}

}  // namespace

WorkFolder::WorkFolder() {
  std::error_code error;
  std::string name = std::filesystem::temp_directory_path(error) / "velkaview-XXXXXX";
  if (error) {
    trouble_ = error.message();
  } else if (mkdtemp(name.data()) == nullptr) {
    trouble_ = std::strerror(errno);  // NOLINT(concurrency-mt-unsafe): one thread
  } else {
    keep(name);
  }
}

void WorkFolder::keep(const std::string& name) {
  try {
    path_ = name;
  } catch (const std::bad_alloc&) {
    (void)rmdir(name.c_str());
    throw;
  }
}

// What a moment without descriptors or memory left is tried again; a folder of pictures
// that nobody asked for would stay for good.
WorkFolder::~WorkFolder() {
  constexpr int kAttempts = 3;
  bool gone = path_.empty();
  for (int attempt = 0; attempt < kAttempts && !gone; ++attempt) {
    try {
      std::error_code error;
      std::filesystem::remove_all(path_, error);
      gone = !error;
    } catch (const std::bad_alloc&) {
    }
  }
}

Problem writeNew(const std::string& name, std::span<const uint8_t> bytes, bool& made) {
  const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (file < 0) return systemTrouble(name);
  made = true;
  Problem problem = writeAll(file, name, bytes);
  if (close(file) != 0 && !problem) return systemTrouble(name);
  return problem;
}

PdfCopy::~PdfCopy() {
  if (made_) (void)unlink(path_.c_str());
}

Problem PdfCopy::make(const std::string& from) {
  std::vector<uint8_t> bytes;
  if (auto problem = readFile(from, bytes)) return problem;
  if (made_) (void)unlink(path_.c_str());  // a filter that was ended may have left it
  made_ = false;
  return writeNew(path_, bytes, made_);
}

}  // namespace velka::view
