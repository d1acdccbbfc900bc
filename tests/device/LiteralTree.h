// The rectangle tree once more: recursive, and without a look at the tree's ends.
#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace velka::literal {

/// The tree as described, recursive and without any hint.
template <typename RECT, typename Keys>
class Tree {
 public:
  struct Item {
    RECT rect;
    Keys key1;
    Keys key2;
    std::unique_ptr<Item> left;
    std::unique_ptr<Item> right;
  };
  using Link = std::unique_ptr<Item>;

  void insert(RECT rect, Keys key1, Keys key2) { put(root, rect, key1, key2); }

  bool remove(Keys key1, Keys key2) {
    Link* link = &root;
    while (*link && !((*link)->key1 == key1 && (*link)->key2 == key2)) {
      link = lower(key1, key2, **link) ? &(*link)->left : &(*link)->right;
    }
    if (!*link) return false;
    Link right = std::move((*link)->right);
    Link left = std::move((*link)->left);
    if (right) {
      Link* place = &left;
      while (*place) {
        place = lower(right->key1, right->key2, **place) ? &(*place)->left : &(*place)->right;
      }
      *place = std::move(right);
    }
    *link = std::move(left);
    return true;
  }

  void collect(const Keys* key1, const Keys* key2, const Link& link, Tree& target) const {
    if (!link || (key1 == nullptr && key2 == nullptr)) return;
    if (key1 != nullptr && link->key1 != *key1) {
      return collect(key1, key2, *key1 < link->key1 ? link->left : link->right, target);
    }
    collect(key1, key2, link->left, target);
    collect(key1, key2, link->right, target);
    if (key1 != nullptr || link->key2 == *key2) target.insert(link->rect, link->key1, link->key2);
  }

  void travel(const Link& link, std::vector<int>& ids) const {
    if (!link) return;
    travel(link->left, ids);
    ids.push_back(link->rect.id);
    travel(link->right, ids);
  }

  Link root;

 private:
  static bool lower(Keys key1, Keys key2, const Item& item) {
    return key1 != item.key1 ? key1 < item.key1 : key2 < item.key2;
  }
  static void put(Link& link, RECT rect, Keys key1, Keys key2) {
    if (link) return put(lower(key1, key2, *link) ? link->left : link->right, rect, key1, key2);
    link = std::make_unique<Item>(Item{rect, key1, key2, nullptr, nullptr});
  }
};

}  // namespace velka::literal
