#include "Chain.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "Files.h"
#include "Process.h"

namespace velka::view {
namespace {

namespace fs = std::filesystem;

// A folder that goes with what is in it. Its name serves as the job's id: it is
// nobody else's, and no real job's, whose ids are numbers.
class WorkFolder {
 public:
  WorkFolder() {
    std::error_code error;
    std::string name = fs::temp_directory_path(error) / "velkaview-XXXXXX";
    if (error) {
      trouble_ = error.message();
    } else if (mkdtemp(name.data()) == nullptr) {
      trouble_ = std::strerror(errno);
    } else {
      path_ = name;
    }
  }
  ~WorkFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  /// Why there is no folder; empty where there is one.
  [[nodiscard]] const std::string& trouble() const { return trouble_; }
  [[nodiscard]] const fs::path& path() const { return path_; }
  [[nodiscard]] std::string id() const { return path_.filename(); }
  [[nodiscard]] std::string operator/(const std::string& name) const { return path_ / name; }

 private:
  fs::path path_;
  std::string trouble_;
};

Problem writeAll(int file, const std::string& name, std::span<const uint8_t> bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = write(file, bytes.data() + done, bytes.size() - done);
    if (count < 0) return systemTrouble(name);
    done += static_cast<size_t>(count);
  }
  return std::nullopt;
}

// A file that was not there before; `made` tells whether it is there now.
Problem writeNew(const std::string& name, std::span<const uint8_t> bytes, bool& made) {
  const int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (file < 0) return systemTrouble(name);
  made = true;
  Problem problem = writeAll(file, name, bytes);
  if (close(file) != 0 && !problem) return systemTrouble(name);
  return problem;
}

// The copy that the filter takes pages from: where it looks, ours alone, gone at the
// end whatever the filter did.
class PdfCopy {
 public:
  explicit PdfCopy(const std::string& id) : path_("/tmp/VK_TEMP_CUPS_" + id + ".pdf") {}
  ~PdfCopy() {
    if (made_) (void)unlink(path_.c_str());
  }
  PdfCopy(const PdfCopy&) = delete;
  PdfCopy& operator=(const PdfCopy&) = delete;

  [[nodiscard]] Problem make(const std::string& from) {
    std::vector<uint8_t> bytes;
    if (auto problem = readFile(from, bytes)) return problem;
    return writeNew(path_, bytes, made_);
  }

 private:
  std::string path_;
  bool made_ = false;
};

bool isProgram(const std::string& path) {
  return access(path.c_str(), X_OK) == 0;
}

class Chain {
 public:
  explicit Chain(const ChainJob& job) : job_(job) {}

  Problem run(std::vector<uint8_t>& stream) {
    if (!folder_.trouble().empty()) return "no temporary folder: " + folder_.trouble();
    if (auto problem = findPrograms()) return problem;
    bool made = false;
    if (auto problem = writeNew(folder_ / "job.pdf", job_.pdf, made)) return problem;
    if (auto problem = step(toPages_, folder_ / "job.pdf", "pages.pdf")) return problem;
    if (auto problem = step(toRaster_, folder_ / "pages.pdf", "pages.raster")) return problem;
    PdfCopy copy(folder_.id());
    if (job_.pdfPreprocess) {
      if (auto problem = copy.make(folder_ / "pages.pdf")) return problem;
    }
    if (auto problem = step(toCommands_, folder_ / "pages.raster", "commands")) return problem;
    return readFile(folder_ / "commands", stream);
  }

 private:
  Problem step(const std::string& program, const std::string& input, const std::string& output) {
    Step step;
    step.program = program;
    step.arguments = {folder_.id(), "velkaview", job_.title, "1", job_.options};
    step.environment = {{"PPD", fs::absolute(job_.ppd)},
                        {"CONTENT_TYPE", "application/pdf"},
                        {"FINAL_CONTENT_TYPE", "application/vnd.cups-raster"},
                        {"TMPDIR", folder_.path()}};
    step.input = input;
    step.output = folder_ / output;
    step.errors = folder_ / "errors";
    return runStep(step, held_);
  }

  // Where the print system keeps its filters; its own tool knows.
  std::string filterFolder() {
    for (const char* tool : {"/usr/bin/cups-config", "/usr/local/bin/cups-config"}) {
      Step ask{tool, {"--serverbin"}, {}, "/dev/null", folder_ / "serverbin", folder_ / "errors"};
      if (!isProgram(tool) || runStep(ask, held_)) continue;
      std::string line;
      std::ifstream file(ask.output);
      if (std::getline(file, line) && !line.empty()) return line + "/filter/";
    }
    return "/usr/lib/cups/filter/";
  }

  Problem findPrograms() {
    const std::string system = filterFolder();
    std::error_code error;
    const fs::path own = fs::read_symlink("/proc/self/exe", error).parent_path();
    toPages_ = system + "pdftopdf";
    toRaster_ = system + (isProgram(system + "gstoraster") ? "gstoraster" : "pdftoraster");
    toCommands_ = system + "rastovelka";
    // Beside us, in the build tree, and where an installation with a prefix of its own
    // has put it.
    for (const fs::path& place : {own / "rastovelka", own / "../filter/rastovelka",
                                  own / VELKA_FILTERS_FROM_BIN / "rastovelka"}) {
      if (isProgram(place)) {
        toCommands_ = place;
        break;
      }
    }
    for (const std::string& program : {toPages_, toRaster_, toCommands_}) {
      if (!isProgram(program)) return program + " is missing, and the chain needs it";
    }
    return std::nullopt;
  }

  const ChainJob& job_;
  SignalsHeld held_;  // until everything is removed
  WorkFolder folder_;
  std::string toPages_;
  std::string toRaster_;
  std::string toCommands_;
};

}  // namespace

Problem runChain(const ChainJob& job, std::vector<uint8_t>& stream) {
  return Chain(job).run(stream);
}

}  // namespace velka::view
