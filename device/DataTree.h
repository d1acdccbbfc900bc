// Rectangles in an unbalanced binary search tree, ordered by a pair of keys.
//
// Encoders keep a page's print areas here and pick out those of one key. Keys
// arrive mostly in rising order, which makes the tree a list, so nothing here
// recurses: clearing rotates, travelling and collecting thread the tree in place
// (J. M. Morris, "Traversing binary trees simply and cheaply", 1979), and insertion
// looks at both ends of the tree first.
#pragma once

#include <new>

/// Rectangles of type RECT ordered by (K1, K2), first key first, both compared
/// as they are (callers use unsigned 64-bit keys; a signed coordinate passed as
/// a key is sign-extended, so negative ones order after all others).
///
/// The tree owns its nodes. A link may be passed to the `clear` of the tree it
/// belongs to only. Nothing throws; when memory runs out an operation has no
/// effect. Not to be used by two threads at once, not even for reading.
template <typename RECT, typename K1, typename K2>
class CDataTree {
 public:
  struct Node {
    RECT rect;
    K1 key1;
    K2 key2;
    Node* left;   ///< lower pairs only
    Node* right;  ///< equal or higher pairs only
  };

  Node* root = nullptr;     ///< null when the tree is empty
  unsigned long count = 0;  ///< number of nodes

  CDataTree() = default;
  CDataTree(const CDataTree&) = delete;
  CDataTree& operator=(const CDataTree&) = delete;
  ~CDataTree() { clear(root); }

  /// Adds a rectangle after all equal pairs and counts it.
  void insert(const RECT& rect, K1 key1, K2 key2) noexcept {
    if (Node* node = makeNode(rect, key1, key2)) {
      hang(node);
    }
  }

  /// Removes the node nearest the root whose pair is exactly this one; its left
  /// subtree takes its place and its right subtree is hung below that. Returns 1,
  /// or 0 when there is no such pair.
  int remove(K1 key1, K2 key2) noexcept {
    Node** link = &root;
    while (*link != nullptr && !isPair(**link, key1, key2)) {
      link = childLink(**link, key1, key2);
    }
    Node* node = *link;
    if (node == nullptr) {
      return 0;
    }
    if (node->right != nullptr) {
      *freeLink(&node->left, node->right->key1, node->right->key2) = node->right;
    }
    *link = node->left;
    forget(node);
    delete node;
    --count;
    return 1;
  }

  /// Copies the matching nodes below `link` into the tree `*target`.
  ///
  /// With a first key: every node with that first key, whatever its second.
  /// With a second key only: every node with that second key. With neither:
  /// none. Nodes are inserted in the order left subtree, right subtree, node,
  /// which turns the order of some equal pairs round. Nothing is done when
  /// `target` or `*target` is null.
  void find(const K1* key1, const K2* key2, Node*& link, CDataTree** target) noexcept {
    if (target != nullptr && *target != nullptr) {
      (void)collect(key1, key2, link, **target);
    }
  }

  /// Writes the matching rectangles (as the collector above selects them) to
  /// `out` in the order of their pairs.
  ///
  /// `*matchCount` becomes the number of matches in any case. Returns 1 when all
  /// were written, be it none; 0 when `out` is null (the way to ask for the
  /// number), when there are more than `capacity` (nothing is written), and with
  /// a count of 0 when memory runs out. `matchCount` may be null.
  int find(const K1* key1, const K2* key2, RECT* out, unsigned long capacity,
           unsigned long* matchCount) noexcept {
    CDataTree matches;
    const bool complete = collect(key1, key2, root, matches);
    if (matchCount != nullptr) {
      *matchCount = matches.count;
    }
    if (!complete || out == nullptr || matches.count > capacity) {
      return 0;
    }
    unsigned long index = 0;
    return matches.travel(matches.root, out, &index);
  }

  /// Writes the rectangles below `link` to `out` from `*index` on, in the order
  /// of their pairs, and raises `*index` by their number. `out` must have room
  /// for all. Returns 1; null pointers make it do nothing.
  int travel(Node*& link, RECT* out, unsigned long* index) noexcept {
    if (out == nullptr || index == nullptr) {
      return 1;
    }
    Node* node = link;
    while (node != nullptr) {
      if (node->left != nullptr && threadToSelf(node, &Node::left, &Node::right)) {
        node = node->left;
        continue;
      }
      out[(*index)++] = node->rect;
      node = node->right;
    }
    return 1;
  }

  /// Frees all nodes below `link` and makes `link` null. Does not touch `count`:
  /// whoever empties the whole tree sets it to 0.
  void clear(Node*& link) noexcept {
    lowest_ = nullptr;
    highest_ = nullptr;
    release(link);
    link = nullptr;
  }

 private:
  static Node* makeNode(const RECT& rect, K1 key1, K2 key2) {
    return new (std::nothrow) Node{rect, key1, key2, nullptr, nullptr};
  }

  static void release(Node* node) {
    while (node != nullptr) {
      Node* next = node->left;
      if (next != nullptr) {
        node->left = next->right;
        next->right = node;
      } else {
        next = node->right;
        delete node;
      }
      node = next;
    }
  }

  static bool isPair(const Node& node, K1 key1, K2 key2) {
    return node.key1 == key1 && node.key2 == key2;
  }

  static bool isBelow(K1 key1, K2 key2, const Node& node) {
    return key1 < node.key1 || (key1 == node.key1 && key2 < node.key2);
  }

  static Node** childLink(Node& node, K1 key1, K2 key2) {
    return isBelow(key1, key2, node) ? &node.left : &node.right;
  }

  static Node** freeLink(Node** link, K1 key1, K2 key2) {
    while (*link != nullptr) {
      link = childLink(**link, key1, key2);
    }
    return link;
  }

  /// The place of a new pair: an end of the tree if it belongs there.
  Node** linkFor(K1 key1, K2 key2) {
    if (highest_ != nullptr && highest_->right == nullptr && !isBelow(key1, key2, *highest_)) {
      return &highest_->right;
    }
    if (lowest_ != nullptr && lowest_->left == nullptr && isBelow(key1, key2, *lowest_)) {
      return &lowest_->left;
    }
    return freeLink(&root, key1, key2);
  }

  void hang(Node* node) {
    if (root == nullptr) {
      lowest_ = nullptr;
      highest_ = nullptr;
    } else if (lowest_ == nullptr || highest_ == nullptr) {
      lookUpEnds();
    }
    *linkFor(node->key1, node->key2) = node;
    if (lowest_ == nullptr || lowest_->left == node) {
      lowest_ = node;
    }
    if (highest_ == nullptr || highest_->right == node) {
      highest_ = node;
    }
    ++count;
  }

  void lookUpEnds() {
    for (lowest_ = root; lowest_->left != nullptr;) {
      lowest_ = lowest_->left;
    }
    for (highest_ = root; highest_->right != nullptr;) {
      highest_ = highest_->right;
    }
  }

  /// Moves an end that is about to go. Removing any other node keeps both ends.
  void forget(const Node* node) {
    if (node == lowest_) {
      lowest_ = nullptr;
    }
    if (node == highest_) {
      highest_ = nullptr;
    }
  }

  /// Links the end of the subtree on one side back to `node` and returns true, or
  /// takes that link away again and returns false.
  static bool threadToSelf(Node* node, Node* Node::*side, Node* Node::*towardsNode) {
    Node* last = node->*side;
    while (last->*towardsNode != nullptr && last->*towardsNode != node) {
      last = last->*towardsNode;
    }
    const bool threaded = last->*towardsNode == nullptr;
    last->*towardsNode = threaded ? node : nullptr;
    return threaded;
  }

  /// The topmost node below `node` that can match: all others lie below it.
  static Node* descend(Node* node, const K1* key1) {
    while (key1 != nullptr && node != nullptr && node->key1 != *key1) {
      node = *key1 < node->key1 ? node->left : node->right;
    }
    return node;
  }

  [[nodiscard]] static bool prependCopy(const Node& node, Node*& chain) {
    Node* copy = makeNode(node.rect, node.key1, node.key2);
    if (copy != nullptr) {
      copy->right = chain;
      chain = copy;
    }
    return copy != nullptr;
  }

  /// Chains copies of the matching nodes by their right links. They are met in the
  /// order node, right, left and put in front, so the chain has the collecting
  /// order. The walk ends even without memory, as it has threads to take away.
  [[nodiscard]] static bool copyMatches(const K1* key1, const K2* key2, Node* top, Node*& chain) {
    bool complete = true;
    Node* node = descend(top, key1);
    while (node != nullptr) {
      const bool again = node->right != nullptr && !threadToSelf(node, &Node::right, &Node::left);
      const bool matches = key1 != nullptr ? node->key1 == *key1 : node->key2 == *key2;
      if (!again && matches && complete) {
        complete = prependCopy(*node, chain);
      }
      node = again || node->right == nullptr ? node->left : node->right;
    }
    return complete;
  }

  [[nodiscard]] static bool collect(const K1* key1, const K2* key2, Node* top, CDataTree& target) {
    if (key1 == nullptr && key2 == nullptr) {
      return true;
    }
    Node* chain = nullptr;
    const bool complete = copyMatches(key1, key2, top, chain);
    while (complete && chain != nullptr) {
      Node* node = chain;
      chain = node->right;
      node->right = nullptr;
      target.hang(node);
    }
    release(chain);
    return complete;
  }

  // The ends of the tree, or null when not known; never a node that is gone.
  Node* lowest_ = nullptr;
  Node* highest_ = nullptr;
};
