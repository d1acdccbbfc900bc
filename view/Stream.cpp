#include "Stream.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "Chain.h"
#include "Files.h"
#include "ModelGuess.h"
#include "PageReader.h"
#include "Ppd.h"
#include "Progress.h"

namespace velka::view {
namespace {

constexpr double kA4Width = 210;

int64_t unitsOf(double millimetres) {
  return std::llround(millimetres / 25.4 * static_cast<double>(decode::kUnitsPerInch));
}

std::string shownInput(const std::string& name) {
  return name == "-" ? "standard input" : name;
}

void tell(const Stream& stream, const std::string& text) {
  clearProgress();
  (void)std::fprintf(stderr, "velkaview: %s: %s\n", stream.name.c_str(), text.c_str());
}

Problem takeGuess(const decode::ModelGuess& guess, Stream& stream) {
  stream.modelKnown = guess.proved;
  stream.model = guess.model.value_or(decode::Model::Standard);
  if (!guess.matters) return std::nullopt;
  if (!guess.model) {
    return stream.name + ": the stream does not tell its model: " + guess.why +
           "; state it with --model or --ppd";
  }
  tell(stream, "read as " + std::string(decode::nameOf(stream.model)) + ": " + guess.why);
  return std::nullopt;
}

// Stated, or proved by the stream.
Problem findModel(const Arguments& arguments, const PpdFacts* ppd, Stream& stream) {
  const decode::ModelGuess guess = decode::guessModel(stream.bytes);
  if (!arguments.model && ppd == nullptr) return takeGuess(guess, stream);
  stream.model = arguments.model ? *arguments.model : ppd->model;
  if (guess.proved && guess.model != stream.model) {
    tell(stream, "read as " + std::string(decode::nameOf(stream.model)) + ", but looks like " +
                     std::string(decode::nameOf(*guess.model)) + ": " + guess.why);
  }
  return std::nullopt;
}

Problem describe(const Arguments& arguments, const std::string& options, Stream& stream) {
  PpdFacts facts;
  const bool ppd = !arguments.ppd.empty();
  if (ppd) {
    if (auto problem = readPpd(arguments.ppd, options, facts)) return problem;
  }
  stream.leastWidth = facts.paperWidth > 0 ? facts.paperWidth : usualWidth();
  return findModel(arguments, ppd ? &facts : nullptr, stream);
}

}  // namespace

std::string stemOf(const std::string& name) {
  if (name == "-") return "stdin";
  const std::string stem = std::filesystem::path(name).stem();
  return stem.empty() ? "page" : stem;
}

int64_t usualWidth() {
  return unitsOf(kA4Width);
}

Problem loadStream(const Arguments& arguments, size_t index, Stream& stream) {
  const std::string& name = arguments.files.at(index);
  stream.name = shownInput(name);
  stream.stem = stemOf(name);
  if (auto problem = readFile(name, stream.bytes)) return problem;
  return describe(arguments, arguments.options, stream);
}

Problem printStream(const Arguments& arguments, std::span<const uint8_t> document,
                    const std::string& options, std::optional<PageRange> pages, Stream& stream) {
  PpdFacts facts;
  if (auto problem = readPpd(arguments.ppd, options, facts)) return problem;
  stream.name = shownInput(arguments.from);
  stream.stem = stemOf(arguments.from);
  const std::string name =
      arguments.from == "-" ? "stdin" : std::filesystem::path(arguments.from).filename().string();
  const ChainJob job{document, name, arguments.ppd, options, facts.pdfPreprocess, pages};
  Printed printed;
  if (auto problem = runChain(job, printed)) return stream.name + ": " + *problem;
  stream.bytes = std::move(printed.stream);
  stream.pagesChosen = printed.pagesChosen;
  return describe(arguments, options, stream);
}

Problem onlyStream(const Arguments& arguments, Stream& stream) {
  if (arguments.from.empty()) return loadStream(arguments, 0, stream);
  std::vector<uint8_t> document;
  if (auto problem = readFile(arguments.from, document)) return problem;
  if (auto problem = printStream(arguments, document, arguments.options, arguments.pages, stream)) {
    return problem;
  }
  return arguments.save.empty() ? std::nullopt : writeFile(arguments.save, stream.bytes);
}

PageChoice choiceOf(const Arguments& arguments, const Stream& stream) {
  const PageRange range = arguments.pages.value_or(PageRange{});
  return {range, stream.pagesChosen ? range.first : 1};
}

Survey survey(const Stream& stream, const PageChoice& wanted) {
  Survey found;
  decode::PageReader reader(stream.bytes, stream.model);
  while (const auto page = reader.next()) {
    if (wanted.range.holds(wanted.first + found.pages++)) found.grid.add(*page);
  }
  return found;
}

std::string faultText(const Stream& stream, const decode::Fault& fault) {
  return stream.name + ": offset " + std::to_string(fault.offset) + ": " + fault.what;
}

}  // namespace velka::view
