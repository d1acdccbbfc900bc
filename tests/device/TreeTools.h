// What the tests of the rectangle tree share.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "DataTree.h"

namespace velka::tree_test {

using Keys = unsigned long;

struct Mark {
  int id;
};

using Tree = CDataTree<Mark, Keys, Keys>;
using Node = Tree::Node;

inline std::vector<int> idsBelow(Tree& tree, Node*& link) {
  std::vector<Mark> marks(tree.count);
  unsigned long index = 0;
  EXPECT_EQ(tree.travel(link, marks.data(), &index), 1);
  std::vector<int> ids;
  std::transform(marks.begin(), marks.begin() + static_cast<long>(index), std::back_inserter(ids),
                 [](Mark mark) { return mark.id; });
  return ids;
}

inline std::vector<int> idsOf(Tree& tree) {
  return idsBelow(tree, tree.root);
}

inline std::vector<int> found(Tree& tree, const Keys* key1, const Keys* key2) {
  std::vector<Mark> marks(tree.count + 1);
  unsigned long matches = 99;
  EXPECT_EQ(tree.find(key1, key2, marks.data(), marks.size(), &matches), 1);
  std::vector<int> ids;
  for (unsigned long i = 0; i < matches; ++i) ids.push_back(marks[i].id);
  return ids;
}

inline void fill(Tree& tree, const std::vector<std::pair<Keys, Keys>>& pairs) {
  int id = 0;
  for (const auto& [key1, key2] : pairs) tree.insert({id++}, key1, key2);
}

}  // namespace velka::tree_test
