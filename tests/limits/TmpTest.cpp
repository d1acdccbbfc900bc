// A /tmp that is read-only, full or not there at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "jobs/JobFixture.h"
#include "pdfcopy/CopyFixture.h"

namespace velka::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kNoMounts = 125;  // status of a program whose /tmp cannot be made so
constexpr int kPpd = 77;        // where it finds its PPD, whatever becomes of /tmp

void must(bool done) {
  if (!done) _exit(kNoMounts);
}

void writeFile(const char* path, const std::string& text) {
  const int file = open(path, O_WRONLY | O_CLOEXEC);
  must(write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size()));
  close(file);
}

// From here on this process mounts for itself alone. Whoever is not root has the right to in
// a user namespace, and loses it with the next program.
void leaveMounts() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  must(unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) == 0);
  if (user != 0) {
    writeFile("/proc/self/setgroups", "deny");
    writeFile("/proc/self/uid_map", std::to_string(user) + ' ' + std::to_string(user) + " 1");
    writeFile("/proc/self/gid_map", std::to_string(group) + ' ' + std::to_string(group) + " 1");
  }
  must(mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0);
}

void mountTmp(const char* options, unsigned long flags = 0) {
  must(mount("tmpfs", "/tmp", "tmpfs", flags, options) == 0);
}

// A root of all that the real one holds, less /tmp. Nothing here may ever remove what it
// finds: folders of the real root stand in it while the program runs.
void enterRootWithoutTmp(const std::string& root) {
  mountTmp("mode=755");
  must(mkdir(root.c_str(), 0755) == 0);
  for (const auto& entry : fs::directory_iterator("/")) {
    const std::string name = entry.path().filename();
    const fs::path place = fs::path(root) / name;
    if (entry.is_symlink()) {
      fs::create_symlink(fs::read_symlink(entry), place);
    } else if (entry.is_directory() && name != "tmp") {
      must(mkdir(place.c_str(), 0755) == 0);
      must(mount(entry.path().c_str(), place.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0);
    }
  }
  must(chroot(root.c_str()) == 0 && chdir("/") == 0 && !fs::exists("/tmp"));
}

struct Tmp {
  const char* name;
  std::function<void()> make;
  const char* reason;  ///< why the log cannot be had; null where it can and stays empty
};

void PrintTo(const Tmp& tmp, std::ostream* out) {
  *out << tmp.name;
}

const std::vector<Tmp> kTmps = {
    {"ReadOnly", [] { mountTmp("mode=1777", MS_RDONLY); }, "Read-only file system"},
    {"WithoutRoomForAFile", [] { mountTmp("mode=1777,nr_inodes=1"); }, "No space left on device"},
    {"WithoutRoomForAByte",
     [] {
       mountTmp("mode=1777,size=4096");
       const int filler = open("/tmp/filler", O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
       must(write(filler, std::string(4096, 'x').data(), 4096) == 4096);
     },
     nullptr},
    {"Missing", [] { enterRootWithoutTmp("/tmp/root"); }, "No such file or directory"}};

class OtherTmp : public ::testing::TestWithParam<Tmp> {
 protected:
  void SetUp() override {
#ifdef __SANITIZE_THREAD__
    if (GetParam().reason == nullptr)
      GTEST_SKIP() << "a process under this sanitizer gets not one byte of a tmpfs so small";
#endif
    if (fs::canonical(VELKA_FILTER).string().starts_with("/tmp/"))
      GTEST_SKIP() << "the programs lie in /tmp";
  }
  FilterResult run(const std::string& program, FilterJob job, bool pdfPages) {
    const TempFile ppd(ppdText({1, {}, pdfPages}));
    job.ppd = "/proc/self/fd/" + std::to_string(kPpd);
    job.beforeStart = [&] {
      must(dup2(open(ppd.path().c_str(), O_RDONLY | O_CLOEXEC), kPpd) == kPpd);
      leaveMounts();
      GetParam().make();
    };
    return runFilter(fs::canonical(program), job);
  }
};

TEST_P(OtherTmp, PrintsARasterAndSaysWhyThereIsNoLog) {
  const RasterPage page = inkedPage(rgbHeader(150, 100), 2);
  FilterJob job;
  job.input = rasterStream({page, page});
  const FilterResult result = run(VELKA_FILTER, job, false);
  if (result.status == kNoMounts) GTEST_SKIP() << "no /tmp of one's own can be mounted here";
  EXPECT_EQ(result.status, 0);
  expectSameStream(result.output, expectedStream(reference::defaultOptions(), {page, page}));
  const std::string warning = GetParam().reason == nullptr
                                  ? ""
                                  : "\nWARNING: The job log /tmp/velka.log cannot be opened: " +
                                        std::string(GetParam().reason) + ".\n";
  EXPECT_EQ(result.errors, warning + finished(2));
}

TEST_P(OtherTmp, StopsTheCopierWithAnError) {
  FilterJob job;
  job.input = somePdf();
  const FilterResult result = run(VELKA_PDFCOPY, job, true);
  if (result.status == kNoMounts) GTEST_SKIP() << "no /tmp of one's own can be mounted here";
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, Bytes{});
  EXPECT_TRUE(result.errors.starts_with(kVersionTold + "\nERROR: ")) << result.errors;
}

INSTANTIATE_TEST_SUITE_P(That, OtherTmp, ::testing::ValuesIn(kTmps),
                         [](const auto& tmp) { return std::string(tmp.param.name); });

}  // namespace
}  // namespace velka::testing
