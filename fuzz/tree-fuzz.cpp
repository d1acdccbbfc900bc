// The rectangle tree against a multimap: any history of insertions, removals and
// queries holds the same rectangles in the same order.
#include <map>

#include "DataTree.h"
#include "Input.h"

namespace {

using namespace velka::fuzz;

using Key = unsigned long;
struct Mark {
  int id;
};
using Tree = CDataTree<Mark, Key, Key>;
using Map = std::multimap<std::pair<Key, Key>, int>;

std::vector<int> idsOf(Tree& tree) {
  std::vector<Mark> marks(tree.count);
  unsigned long index = 0;
  require(tree.travel(tree.root, marks.data(), &index) == 1 && index == tree.count);
  std::vector<int> ids;
  ids.reserve(marks.size());
  for (const Mark mark : marks) ids.push_back(mark.id);
  return ids;
}

std::vector<int> idsOf(const Map& map) {
  std::vector<int> ids;
  for (const auto& [keys, id] : map) ids.push_back(id);
  return ids;
}

// A query gives the matches by their keys; equal pairs may come in another order.
void query(Tree& tree, const Map& map, const Key* key1, const Key* key2) {
  std::vector<int> wanted;
  for (const auto& [keys, id] : map)
    if (key1 != nullptr ? keys.first == *key1 : key2 != nullptr && keys.second == *key2)
      wanted.push_back(id);
  std::vector<Mark> marks(wanted.size() + 1);
  unsigned long matches = 0;
  require(tree.find(key1, key2, marks.data(), marks.size(), &matches) == 1);
  require(matches == wanted.size());
  std::vector<int> ids;
  for (unsigned long i = 0; i < matches; ++i) ids.push_back(marks[i].id);
  std::sort(ids.begin(), ids.end());
  std::sort(wanted.begin(), wanted.end());
  require(ids == wanted);
}

void removePair(Tree& tree, Map& map, Key key1, Key key2) {
  // The first inserted of equal pairs stands nearest the root.
  const auto pair = map.lower_bound({key1, key2});
  const bool there = pair != map.end() && pair->first == std::pair(key1, key2);
  require(tree.remove(key1, key2) == (there ? 1 : 0));
  if (there) map.erase(pair);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  Tree tree;
  Map map;
  for (int id = 0; !input.isEmpty() && id < 2000; ++id) {
    const uint8_t what = input.byte();
    // Few keys, so that there are equal ones; at times one from the far end.
    const Key key1 =
        (what & 0x80U) != 0 ? static_cast<Key>(-1L - input.byte()) : input.byte() % 16U;
    const Key key2 = input.byte() % 8U;
    if (what % 4 < 2) {
      tree.insert({id}, key1, key2);
      map.insert({{key1, key2}, id});
    } else if (what % 4 == 2) {
      removePair(tree, map, key1, key2);
    } else {
      query(tree, map, (what & 4U) != 0 ? &key1 : nullptr, (what & 8U) != 0 ? &key2 : nullptr);
    }
    require(tree.count == map.size());
  }
  require(idsOf(tree) == idsOf(map));
  tree.clear(tree.root);
  return 0;
}
