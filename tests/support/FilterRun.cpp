#include "support/FilterRun.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "ProgramStart.h"

namespace velka::testing {
namespace {

int fileWith(const Bytes& bytes) {
  const int fd = memfd_create("input", MFD_CLOEXEC);
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  lseek(fd, 0, SEEK_SET);
  return fd;
}

struct Descriptors {
  int in;
  int out;
  int err;
};

ProgramWords argumentsOf(const std::string& program, const FilterJob& job) {
  ProgramWords words;
  words.add(program);
  for (const std::string& argument : job.arguments) words.add(argument);
  return words;
}

ProgramWords environmentOf(const FilterJob& job) {
  std::map<std::string, std::string> values;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text = *entry;
    values[text.substr(0, text.find('='))] = text.substr(text.find('=') + 1);
  }
  values.erase("PPD");
  if (job.ppd) values["PPD"] = *job.ppd;
  if (job.path) values["PATH"] = *job.path;
  for (const auto& [name, value] : job.environment) values[name] = value;
  ProgramWords words;
  for (const auto& [name, value] : values) words.add(std::string(name).append("=").append(value));
  return words;
}

// Made beforehand: where another thread took memory at the fork, the child gets none any more
// (sanitizers do not see to that).
struct Words {
  char* const* arguments;
  char* const* environment;
};

[[noreturn]] void becomeFilter(const Words& words, const FilterJob& job, const Descriptors& fds) {
  alarm(job.mostSeconds);
  dup2(fds.in, STDIN_FILENO);
  dup2(fds.out, STDOUT_FILENO);
  dup2(fds.err, STDERR_FILENO);
  for (const int fd : job.closedAtStart) close(fd);
  if (job.addressSpace > 0) {
    const rlimit limit = {job.addressSpace, job.addressSpace};
    setrlimit(RLIMIT_AS, &limit);
  }
  if (job.fileSize > 0) {
    const rlimit limit = {job.fileSize, job.fileSize};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  if (job.beforeStart) job.beforeStart();
  execve(words.arguments[0], words.arguments, words.environment);
  _exit(127);
}

// Waits for the program's end.
void collect(int pid, FilterResult& result) {
  int status = 0;
  rusage usage = {};
  wait4(pid, &status, 0, &usage);
  result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  result.peakKiB = usage.ru_maxrss;
}

std::string asText(const Bytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

}  // namespace

Bytes readToEnd(int fd) {
  Bytes bytes;
  Bytes piece(4096);
  for (ssize_t n = 0; (n = read(fd, piece.data(), piece.size())) > 0;)
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + n);
  return bytes;
}

FilterResult runFilter(const std::string& program, const FilterJob& job) {
  int feedPipe[2] = {-1, -1};
  int outputPipe[2] = {-1, -1};
  const bool piped = job.outputBroken || job.drain;
  if (job.feed && pipe2(feedPipe, O_CLOEXEC) != 0) return {};
  if (piped && pipe2(outputPipe, O_CLOEXEC) != 0) return {};
  if (job.outputBroken) close(outputPipe[0]);
  if (job.drain) fcntl(outputPipe[1], F_SETPIPE_SZ, 4096);
  const int output = memfd_create("output", MFD_CLOEXEC);
  const int errors = memfd_create("errors", MFD_CLOEXEC);
  const Descriptors fds = {job.feed ? feedPipe[0] : fileWith(job.input),
                           piped ? outputPipe[1] : output, errors};
  ProgramWords arguments = argumentsOf(program, job);
  ProgramWords environment = environmentOf(job);
  const Words words = {arguments.get(), environment.get()};
  const int pid = fork();
  if (pid == 0) becomeFilter(words, job, fds);
  close(fds.in);
  if (piped) close(outputPipe[1]);
  if (job.feed) {
    // A filter that has ended must not end the test with it.
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    job.feed(pid, feedPipe[1]);
    close(feedPipe[1]);
    std::signal(SIGPIPE, before);
  }
  FilterResult result;
  if (job.drain) {
    result.output = job.drain(pid, outputPipe[0]);
    close(outputPipe[0]);
  }
  collect(pid, result);
  if (!job.drain) result.output = contentsOf(output);
  result.errors = asText(contentsOf(errors));
  close(output);
  close(errors);
  return result;
}

std::string logText() {
  std::ifstream file("/tmp/velka.log", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> logMessages() {
  std::vector<std::string> messages;
  std::istringstream lines(logText());
  for (std::string line; std::getline(lines, line);) {
    // Date, time, thread and level stand before the message; file:line and CR behind.
    const size_t level = line.find(" LOG_");
    const size_t start = level == std::string::npos ? 0 : level + 1 + 9 + 1;
    const size_t end = line.rfind(' ');
    messages.push_back(line.substr(start, end - start));
  }
  return messages;
}

}  // namespace velka::testing
