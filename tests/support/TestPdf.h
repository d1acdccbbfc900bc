// PDFs made by ghostscript, their pages as pdftoppm draws them, and tools that are
// missing or play tricks.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "support/Capture.h"
#include "support/TestPpd.h"

namespace velka::testing {

/// A folder that goes with what is in it.
class TempFolder {
 public:
  TempFolder() {
    std::string name = "/tmp/velka-test-XXXXXX";
    path_ = mkdtemp(name.data()) == nullptr ? "" : name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

inline void writeText(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

/// What can be read of it, which is nothing where it is not there or goes meanwhile.
inline std::string textOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// An environment variable that gets its value back.
class Environment {
 public:
  Environment(const char* name, const std::string& value) : name_(name) {
    const char* before = std::getenv(name);
    if (before != nullptr) before_ = before;
    setenv(name, value.c_str(), 1);
  }
  ~Environment() { setenv(name_, before_.c_str(), 1); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  const char* name_;
  std::string before_;
};

/// A PATH of one folder that holds the named tools of the system, and scripts.
class ToolFolder {
 public:
  explicit ToolFolder(const std::vector<std::string>& tools) {
    for (const std::string& tool : tools)
      for (const char* folder : {"/usr/bin/", "/bin/"})
        if (TempFile::exists(folder + tool)) {
          std::error_code ignored;
          std::filesystem::create_symlink(folder + tool, folder_ / tool, ignored);
        }
  }
  void addScript(const std::string& name, const std::string& body) const {
    // Writing through a link of this name would change the system's own tool.
    unlink((folder_ / name).c_str());
    writeText(folder_ / name, "#!/bin/sh\n" + body + "\n");
    chmod((folder_ / name).c_str(), 0755);
  }
  [[nodiscard]] const std::string& path() const { return folder_.path(); }

 private:
  TempFolder folder_;
};

/// A page of the given size in points with black and red marks that depend on its
/// number.
inline std::string postscriptPage(int number, int width = 60, int height = 40, int turn = 0) {
  const std::string at = std::to_string(number % 10 * 2 + 3);
  return "<< /PageSize [" + std::to_string(width) + " " + std::to_string(height) +
         "] >> setpagedevice\n" +
         (turn == 0 ? ""
                    : "[/Page " + std::to_string(number) + " /Rotate " + std::to_string(turn) +
                          " /PAGE pdfmark\n") +
         "0 0 0 setrgbcolor " + at + " 5 9 12 rectfill\n1 0 0 setrgbcolor 30 " + at +
         " 15 7 rectfill\n0.5 setgray 2 28 " + std::to_string(2 + number) +
         " 3 rectfill\nshowpage\n";
}

inline std::string postscriptPages(int count) {
  std::string text;
  for (int page = 1; page <= count; ++page) text += postscriptPage(page);
  return text;
}

/// Whether ghostscript made the PDF. `options` go onto its command line.
inline bool makePdf(const std::string& path, const std::string& postscript,
                    const std::string& options = "") {
  const TempFile source(postscript, ".ps");
  const std::string command = "gs -q -dNOPAUSE -dBATCH -sDEVICE=pdfwrite " + options +
                              " -sOutputFile=" + path + " " + source.path() + " >/dev/null 2>&1";
  return std::system(command.c_str()) == 0;
}

/// A picture as the tool writes it: red, green, blue bytes.
struct Picture {
  int width = 0;
  int height = 0;
  Bytes pixels;
};

/// One page drawn by the tool itself; empty where it cannot be.
inline Picture drawPage(const std::string& pdf, int page, unsigned xdpi, unsigned ydpi) {
  const TempFolder folder;
  const std::string number = std::to_string(page);
  const std::string command = "pdftoppm -q -singlefile -aa no -aaVector no -f " + number + " -l " +
                              number + " -rx " + std::to_string(xdpi) + " -ry " +
                              std::to_string(ydpi) + " " + pdf + " " + (folder / "page");
  if (std::system(command.c_str()) != 0) return {};
  std::ifstream file(folder / "page.ppm", std::ios::binary);
  std::string magic;
  int maxval = 0;
  Picture picture;
  file >> magic >> picture.width >> picture.height >> maxval;
  file.get();
  picture.pixels.assign(std::istreambuf_iterator<char>(file), {});
  return picture;
}

/// The page bitmap of a picture, straight from the layout: blue, green, red, rows
/// padded with 0 to a multiple of four, missing pixels white.
inline Bytes bitmapOf(const Picture& picture) {
  const auto width = static_cast<size_t>(picture.width);
  const auto height = static_cast<size_t>(picture.height);
  const size_t stride = (24 * width + 31) / 32 * 4;
  Bytes bitmap(stride * height, 0);
  for (size_t row = 0; row < height; ++row)
    for (size_t x = 0; x < width; ++x)
      for (size_t colour = 0; colour < 3; ++colour) {
        const size_t pixel = (row * width + x) * 3;
        bitmap[row * stride + 3 * x + colour] =
            pixel + 2 < picture.pixels.size() ? picture.pixels[pixel + 2 - colour] : uint8_t{255};
      }
  return bitmap;
}

/// Names under /tmp that a job id gives.
inline std::string pdfPathOf(const std::string& id) {
  return "/tmp/VK_TEMP_CUPS_" + id + ".pdf";
}
inline std::string picturePathOf(const std::string& id, const std::string& number) {
  return "/tmp/VK_TEMP_CUPS_" + id + "-" + number + ".ppm";
}

/// The files under /tmp whose names start as the job's do.
inline std::vector<std::string> filesOf(const std::string& id) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
    const std::string name = entry.path().filename();
    if (name.rfind("VK_TEMP_CUPS_" + id, 0) == 0) names.push_back(name);
  }
  return names;
}

/// A job id of this process, whose files go with the object.
class JobId {
 public:
  explicit JobId(const std::string& name)
      : text_("velka-" + name + "." + std::to_string(getpid())) {}
  ~JobId() {
    for (const std::string& name : filesOf(text_)) unlink(("/tmp/" + name).c_str());
  }
  JobId(const JobId&) = delete;
  JobId& operator=(const JobId&) = delete;
  [[nodiscard]] const std::string& text() const { return text_; }
  [[nodiscard]] std::string pdf() const { return pdfPathOf(text_); }
  [[nodiscard]] std::string picture(const std::string& number) const {
    return picturePathOf(text_, number);
  }

 private:
  std::string text_;
};

}  // namespace velka::testing
