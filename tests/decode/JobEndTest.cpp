#include <gtest/gtest.h>

#include <algorithm>

#include "PageReader.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

std::optional<Fault> faultOf(Bytes stream, Model model = Model::Standard) {
  PageReader reader(stream, model);
  while (reader.next()) {
  }
  return reader.fault();
}

ExpectedStream printed() {
  return ExpectedStream().unit(10).down(48).toX(7).block(0, 39, 1, {1, 2, 3}).eject('0').formFeed();
}

ExpectedStream page() {
  return ExpectedStream().start(66).add(printed());
}

bool endsWith(Bytes stream, const Stream& end) {
  return stream.size() >= end.size() && std::equal(end.rbegin(), end.rend(), stream.rbegin());
}

// What the end of a job looks like, byte for byte: behind a form feed or a white page.
bool isWhole(Bytes stream) {
  const Stream fed = {0x0C, 0x1B, '@'};
  const Stream white = ExpectedStream().start(66).end().bytes();
  return endsWith(stream, fed) || endsWith(stream, white);
}

std::vector<Stream> jobs() {
  return {page().end().bytes(),
          page().add(page()).end().bytes(),
          ExpectedStream().start(66).end().bytes(),                        // white
          page().start(66).start(66).add(page()).start(66).end().bytes(),  // white pages between
          page().add(printed()).formFeed().end().bytes(),                  // copies of a page
          page().start(66).add(printed()).add(printed()).end().bytes()};   // copies of a job
}

TEST(JobEnd, WholeJobsHaveNoFault) {
  for (const Stream& job : jobs()) EXPECT_FALSE(faultOf(job).has_value()) << faultOf(job)->what;
  const Stream several = page().end().add(page()).end().bytes();
  EXPECT_FALSE(faultOf(several).has_value());
  const Stream orlo = ExpectedStream()
                          .start(66)
                          .add({0x1B, 'r', 2, 0x1B, '*', 39, 1, 0, 1, 2, 3, 0x0D, 0x0C})
                          .end()
                          .bytes();
  EXPECT_FALSE(faultOf(orlo, Model::OrloBack).has_value());
}

TEST(JobEnd, EveryCutButThoseThatAreAWholeJobIsAFault) {
  size_t whole = 0;
  for (const Stream& job : jobs()) {
    for (size_t length = 0; length < job.size(); ++length) {
      const Bytes cut = Bytes(job).first(length);
      EXPECT_EQ(faultOf(cut).has_value(), !isWhole(cut)) << length << " of " << job.size();
      whole += isWhole(cut) ? 1 : 0;
    }
  }
  EXPECT_EQ(whole, 6U);
}

TEST(JobEnd, WhatIsMissingIsTold) {
  EXPECT_EQ(faultOf({})->what, "the stream is empty");
  const Stream fed = page().bytes();
  EXPECT_EQ(faultOf(fed)->what, "the stream ends before its job does");
  EXPECT_EQ(faultOf(fed)->offset, fed.size());
  EXPECT_EQ(faultOf(Bytes(fed).first(fed.size() - 1))->what, "the stream ends inside a page");
}

}  // namespace
}  // namespace velka::decode
