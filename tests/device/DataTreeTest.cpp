#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <type_traits>
#include <vector>

#include "BitmapRecords.h"
#include "DataTree.h"
#include "LiteralTree.h"
#include "TreeTools.h"

namespace {

using namespace velka::tree_test;

static_assert(!std::is_copy_constructible_v<Tree> && !std::is_copy_assignable_v<Tree>);
static_assert(std::is_same_v<decltype(Tree::count), unsigned long>);

using LiteralTree = velka::literal::Tree<Mark, Keys>;

void expectSameShape(const Node* node, const LiteralTree::Link& item) {
  ASSERT_EQ(node == nullptr, item == nullptr);
  if (node == nullptr) return;
  ASSERT_EQ(node->rect.id, item->rect.id);
  ASSERT_EQ(node->key1, item->key1);
  ASSERT_EQ(node->key2, item->key2);
  expectSameShape(node->left, item->left);
  expectSameShape(node->right, item->right);
}

std::vector<int> foundLiterally(const LiteralTree& tree, const Keys* key1, const Keys* key2) {
  LiteralTree target;
  tree.collect(key1, key2, tree.root, target);
  std::vector<int> ids;
  target.travel(target.root, ids);
  return ids;
}

TEST(DataTree, StartsEmptyWithTheRootFirstAndTheCountNext) {
  Tree tree;
  EXPECT_EQ(tree.root, nullptr);
  EXPECT_EQ(tree.count, 0U);
  EXPECT_EQ(static_cast<void*>(&tree), static_cast<void*>(&tree.root));
  EXPECT_EQ(reinterpret_cast<char*>(&tree.count) - reinterpret_cast<char*>(&tree), 8);
}

TEST(DataTree, HoldsBothRectangleTypes) {
  CDataTree<_RECTL, Keys, Keys> sections;
  CDataTree<tagRECT, Keys, Keys> areas;
  sections.insert({1, 2, 3, 4}, 2, 1);
  areas.insert({5, 6, 7, 8}, 6, 5);
  const Keys six = 6;
  tagRECT rect{};
  unsigned long matches = 0;
  EXPECT_EQ(areas.find(&six, nullptr, &rect, 1, &matches), 1);
  EXPECT_EQ(matches, 1U);
  EXPECT_EQ(rect.bottom, 8);
  EXPECT_EQ(sections.root->rect.left, 1);
}

TEST(DataTree, TravelsByFirstThenSecondKeyWithEqualPairsInOrderOfInsertion) {
  Tree tree;
  fill(tree, {{5, 1}, {3, 9}, {5, 0}, {5, 1}, {9, 0}, {3, 2}, {5, 1}});
  EXPECT_EQ(idsOf(tree), (std::vector<int>{5, 1, 2, 0, 3, 6, 4}));
  EXPECT_EQ(tree.count, 7U);
}

TEST(DataTree, NegativeCoordinatesOrderAfterAllOthers) {
  Tree tree;
  tree.insert({0}, static_cast<Keys>(-1), 0);
  tree.insert({1}, 5, 0);
  EXPECT_EQ(idsOf(tree), (std::vector<int>{1, 0}));
}

TEST(DataTree, RemovesTheFirstInsertedOfEqualPairs) {
  Tree tree;
  fill(tree, {{4, 4}, {4, 4}, {4, 4}});
  EXPECT_EQ(tree.remove(4, 4), 1);
  EXPECT_EQ(idsOf(tree), (std::vector<int>{1, 2}));
  EXPECT_EQ(tree.count, 2U);
}

TEST(DataTree, RightSubtreeOfARemovedRootBecomesTheRoot) {
  Tree tree;
  fill(tree, {{1, 0}, {3, 0}, {2, 0}});
  Node* right = tree.root->right;
  EXPECT_EQ(tree.remove(1, 0), 1);
  EXPECT_EQ(tree.root, right);
}

TEST(DataTree, LeftSubtreeTakesThePlaceAndCarriesTheRightOne) {
  Tree tree;
  fill(tree, {{10, 0}, {5, 0}, {20, 0}, {7, 0}});
  EXPECT_EQ(tree.remove(10, 0), 1);
  EXPECT_EQ(tree.root->key1, 5U);
  EXPECT_EQ(tree.root->right->right->key1, 20U);
}

TEST(DataTree, RemovingAnAbsentPairChangesNothing) {
  Tree tree;
  EXPECT_EQ(tree.remove(1, 1), 0);
  fill(tree, {{1, 1}});
  EXPECT_EQ(tree.remove(1, 2), 0);
  EXPECT_EQ(tree.count, 1U);
}

TEST(DataTree, FindsByFirstKeyWhateverTheSecondAndByTheSecondAlone) {
  Tree tree;
  fill(tree, {{1, 7}, {2, 7}, {2, 8}, {3, 7}, {2, 6}});
  const Keys two = 2;
  const Keys seven = 7;
  EXPECT_EQ(found(tree, &two, &seven), (std::vector<int>{4, 1, 2}));
  EXPECT_EQ(found(tree, &two, nullptr), (std::vector<int>{4, 1, 2}));
  EXPECT_EQ(found(tree, nullptr, &seven), (std::vector<int>{0, 1, 3}));
  EXPECT_TRUE(found(tree, nullptr, nullptr).empty());
  EXPECT_TRUE(found(tree, &seven, nullptr).empty());
}

TEST(DataTree, EqualPairsComeOutOfAQueryLastInsertedFirst) {
  Tree tree;
  fill(tree, {{2, 2}, {2, 2}, {2, 2}});
  const Keys two = 2;
  EXPECT_EQ(found(tree, &two, nullptr), (std::vector<int>{2, 1, 0}));
}

TEST(DataTree, QueryWithoutArrayOrWithTooSmallAnArrayOnlyCounts) {
  Tree tree;
  fill(tree, {{2, 1}, {2, 2}, {2, 3}});
  const Keys two = 2;
  Mark out[2] = {{-1}, {-1}};
  unsigned long matches = 0;
  EXPECT_EQ(tree.find(&two, nullptr, nullptr, 0, &matches), 0);
  EXPECT_EQ(matches, 3U);
  matches = 0;
  EXPECT_EQ(tree.find(&two, nullptr, out, 2, &matches), 0);
  EXPECT_EQ(matches, 3U);
  EXPECT_EQ(out[0].id, -1);
  EXPECT_EQ(out[1].id, -1);
  EXPECT_EQ(tree.find(&two, nullptr, out, 2, nullptr), 0);
}

TEST(DataTree, QueryWithoutMatchSucceedsWithNone) {
  Tree tree;
  const Keys two = 2;
  Mark out{-1};
  unsigned long matches = 9;
  EXPECT_EQ(tree.find(&two, nullptr, &out, 1, &matches), 1);
  EXPECT_EQ(matches, 0U);
  EXPECT_EQ(out.id, -1);
}

TEST(DataTree, CollectorAddsToTheTargetAndIgnoresAMissingOne) {
  Tree tree;
  fill(tree, {{2, 1}, {1, 1}, {2, 2}});
  Tree target;
  target.insert({50}, 0, 0);
  Tree* pointer = &target;
  const Keys two = 2;
  tree.find(&two, nullptr, tree.root, &pointer);
  EXPECT_EQ(target.count, 3U);
  EXPECT_EQ(idsOf(target), (std::vector<int>{50, 0, 2}));
  tree.find(&two, nullptr, tree.root->left, &pointer);
  EXPECT_EQ(target.count, 3U);
  pointer = nullptr;
  tree.find(&two, nullptr, tree.root, &pointer);
  tree.find(&two, nullptr, tree.root, nullptr);
  EXPECT_EQ(tree.count, 3U);
}

TEST(DataTree, TravelOfASubtreeAppendsAtTheIndexAndKeepsTheTree) {
  Tree tree;
  fill(tree, {{5, 0}, {3, 0}, {8, 0}, {2, 0}, {4, 0}});
  ASSERT_NE(tree.root, nullptr);
  EXPECT_EQ(idsBelow(tree, tree.root->left), (std::vector<int>{3, 1, 4}));
  EXPECT_EQ(idsOf(tree), (std::vector<int>{3, 1, 4, 0, 2}));
  unsigned long index = 5;
  EXPECT_EQ(tree.travel(tree.root, nullptr, &index), 1);
  EXPECT_EQ(index, 5U);
}

TEST(DataTree, ClearLeavesTheCountAndTheTreeFillsAgain) {
  Tree tree;
  fill(tree, {{5, 0}, {3, 0}, {8, 0}});
  tree.clear(tree.root);
  EXPECT_EQ(tree.root, nullptr);
  EXPECT_EQ(tree.count, 3U);
  tree.count = 0;
  fill(tree, {{5, 0}, {9, 0}});
  EXPECT_EQ(idsOf(tree), (std::vector<int>{0, 1}));
}

TEST(DataTree, ClearedSubtreesAndRemovedEndsAreNotInsertedUnder) {
  Tree tree;
  fill(tree, {{5, 0}, {8, 0}, {9, 0}, {3, 0}});
  ASSERT_NE(tree.root, nullptr);
  tree.clear(tree.root->right);
  EXPECT_EQ(tree.root->right, nullptr);
  tree.insert({4}, 10, 0);
  EXPECT_EQ(idsOf(tree), (std::vector<int>{3, 0, 4}));
  EXPECT_EQ(tree.remove(10, 0), 1);
  EXPECT_EQ(tree.remove(3, 0), 1);
  tree.insert({5}, 11, 0);
  tree.insert({6}, 1, 0);
  EXPECT_EQ(idsOf(tree), (std::vector<int>{6, 0, 5}));
}

TEST(DataTree, RandomHistoriesHaveTheShapeOfTheLiteralTree) {
  std::mt19937 random(5);
  for (int round = 0; round < 200; ++round) {
    Tree tree;
    LiteralTree literal;
    const Keys range = 1 + random() % 12;
    for (int id = 0; id < 60; ++id) {
      const Keys key1 = random() % range;
      const Keys key2 = random() % range;
      if (random() % 3 != 0) {
        tree.insert({id}, key1, key2);
        literal.insert({id}, key1, key2);
      } else {
        ASSERT_EQ(tree.remove(key1, key2), literal.remove(key1, key2) ? 1 : 0);
      }
      expectSameShape(tree.root, literal.root);
    }
    for (Keys key = 0; key < range; ++key) {
      ASSERT_EQ(found(tree, &key, nullptr), foundLiterally(literal, &key, nullptr));
      ASSERT_EQ(found(tree, nullptr, &key), foundLiterally(literal, nullptr, &key));
    }
    expectSameShape(tree.root, literal.root);
  }
}

}  // namespace
