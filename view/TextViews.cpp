// The views in words: the list of commands, the numbers.
#include <cinttypes>
#include <cstdio>

#include "CommandText.h"
#include "JobEnd.h"
#include "PageCells.h"
#include "Report.h"
#include "StreamStats.h"
#include "Views.h"

namespace velka::view {
namespace {

void printStats(const decode::StreamStats& stats, const Stream& stream,
                const decode::Speeds& speeds) {
  const auto count = [](const char* key, uint64_t value) {
    (void)std::printf("%-12s %" PRIu64 "\n", key, value);
  };
  count("pages", stats.pages);
  count("bands", stats.bands);
  count("black dots", stats.dots[0]);
  count("red dots", stats.dots[1]);
  if (stats.places) {
    count("black places", stats.places->at(0));
    count("red places", stats.places->at(1));
  }
  count("blocks", stats.blocks);
  count("bytes", stats.bytes);
  count("head passes", stats.passes);
  count("paper moves", stats.paperMoves);
  (void)std::printf("moved on     %.1f mm\n", decode::millimetres(stats.movedOn));
  (void)std::printf("moved back   %.1f mm\n", decode::millimetres(stats.movedBack));
  if (stats.coverage) {
    (void)std::printf("black ink    %.2f %% of the paper\n", 100 * stats.coverage->at(0));
    (void)std::printf("red ink      %.2f %% of the paper\n", 100 * stats.coverage->at(1));
  } else {
    (void)std::printf("black ink    unknown\nred ink      unknown\n");
  }
  (void)std::printf("time         %.1f s (head %g mm/s, feed %g mm/s)\n", stats.seconds,
                    speeds.head, speeds.feed);
  const std::string model(stream.modelKnown ? decode::nameOf(stream.model) : "unknown");
  (void)std::printf("model        %s\n", model.c_str());
}

void warnOfPages(const Stream& stream, decode::PaperWidth width) {
  decode::PageReader reader(stream.bytes, stream.model);
  uint64_t number = 0;
  while (const auto page = reader.next()) {
    decode::Grid grid;
    grid.add(*page);
    const decode::Paper paper = decode::paperOf(*page, stream.model, grid, width);
    warnOfPage(stream, ++number, *page, decode::dotsOutside(*page, stream.model, paper));
  }
}

}  // namespace

int listCommands(const Arguments& arguments) {
  Stream stream;
  if (auto problem = onlyStream(arguments, stream)) return fail(*problem);
  decode::CommandReader reader(stream.bytes, stream.model);
  decode::Carriage carriage;
  decode::JobEnd end;
  while (const auto command = reader.next()) {
    (void)std::printf("%s\n", decode::lineOf(*command, carriage).c_str());
    carriage.apply(*command);
    end.note(command->kind);
  }
  const auto fault = reader.fault() ? reader.fault() : end.missing(stream.bytes.size());
  return finish(stream, fault, flushed(kDone));
}

int tellStats(const Arguments& arguments) {
  Stream stream;
  if (auto problem = onlyStream(arguments, stream)) return fail(*problem);
  const auto stats = decode::readStats(stream.bytes, stream.model, arguments.speeds,
                                       paperWidth(arguments, stream));
  printStats(stats, stream, arguments.speeds);
  warnOfPages(stream, paperWidth(arguments, stream));
  return finish(stream, stats.fault, flushed(kDone));
}

}  // namespace velka::view
