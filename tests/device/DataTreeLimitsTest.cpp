#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <vector>

#include "TreeTools.h"

namespace {

long g_nodesLeft = -1;  // nodes that may still be allocated; negative: any number

}  // namespace

// Nodes are the only things allocated this way here.
void* operator new(std::size_t size, const std::nothrow_t& /*unused*/) noexcept {
  if (g_nodesLeft == 0) {
    return nullptr;
  }
  if (g_nodesLeft > 0) {
    --g_nodesLeft;
  }
  return ::operator new(size);
}

namespace {

using namespace velka::tree_test;

constexpr int kMany = 100000;

void expectManyWork(Tree& tree, const std::vector<int>& order) {
  EXPECT_EQ(tree.count, static_cast<unsigned long>(kMany));
  EXPECT_EQ(idsOf(tree), order);
  const Keys seven = 7;
  EXPECT_EQ(found(tree, nullptr, &seven).size(), static_cast<size_t>(kMany));
}

std::vector<int> upwards() {
  std::vector<int> ids(kMany);
  for (int i = 0; i < kMany; ++i) ids[static_cast<size_t>(i)] = i;
  return ids;
}

TEST(DataTree, AHundredThousandRisingKeysWork) {
  Tree tree;
  for (int i = 0; i < kMany; ++i) tree.insert({i}, static_cast<Keys>(i), 7);
  expectManyWork(tree, upwards());
  const Keys last = kMany - 1;
  EXPECT_EQ(found(tree, &last, nullptr), std::vector<int>{kMany - 1});
  for (int i = 0; i < kMany; ++i) ASSERT_EQ(tree.remove(static_cast<Keys>(i), 7), 1);
  EXPECT_EQ(tree.root, nullptr);
}

TEST(DataTree, AHundredThousandFallingKeysWork) {
  Tree tree;
  for (int i = kMany - 1; i >= 0; --i) tree.insert({i}, static_cast<Keys>(i), 7);
  expectManyWork(tree, upwards());
  const Keys first = 0;
  EXPECT_EQ(found(tree, &first, nullptr), std::vector<int>{0});
}

TEST(DataTree, AHundredThousandEqualKeysWork) {
  Tree tree;
  for (int i = 0; i < kMany; ++i) tree.insert({i}, 3, 7);
  expectManyWork(tree, upwards());
  const Keys three = 3;
  std::vector<int> backwards = upwards();
  std::reverse(backwards.begin(), backwards.end());
  EXPECT_EQ(found(tree, &three, nullptr), backwards);
  tree.clear(tree.root);
  EXPECT_EQ(tree.root, nullptr);
}

TEST(DataTree, WithoutMemoryInsertionAndQueriesDoNothing) {
  Tree tree;
  fill(tree, {{2, 1}, {2, 2}, {2, 3}});
  const Keys two = 2;
  Mark out[3] = {{-1}, {-1}, {-1}};
  unsigned long matches = 9;
  g_nodesLeft = 2;
  EXPECT_EQ(tree.find(&two, nullptr, out, 3, &matches), 0);
  g_nodesLeft = 0;
  tree.insert({9}, 1, 1);
  g_nodesLeft = -1;
  EXPECT_EQ(matches, 0U);
  EXPECT_EQ(out[0].id, -1);
  EXPECT_EQ(idsOf(tree), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(tree.count, 3U);
}

}  // namespace
