#include "NearestName.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace velka::view {
namespace {

char lower(char letter) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
}

// Slips that make one name of the other.
size_t slipsBetween(const std::string& a, const std::string& b) {
  std::array<std::vector<size_t>, 3> rows;  // of a's letters: before the last, last, this
  for (auto& row : rows) row.assign(b.size() + 1, 0);
  for (size_t j = 0; j <= b.size(); ++j) rows[2][j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    std::rotate(rows.begin(), rows.begin() + 1, rows.end());
    rows[2][0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const bool same = lower(a[i - 1]) == lower(b[j - 1]);
      rows[2][j] =
          std::min({rows[1][j] + 1, rows[2][j - 1] + 1, rows[1][j - 1] + (same ? 0U : 1U)});
      const bool exchanged = i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                             lower(a[i - 2]) == lower(b[j - 1]);
      if (exchanged) rows[2][j] = std::min(rows[2][j], rows[0][j - 2] + 1);
    }
  }
  return rows[2][b.size()];
}

}  // namespace

std::optional<std::string> nearestName(const std::string& written,
                                       const std::vector<std::string>& names) {
  constexpr size_t kMostSlips = 2;
  constexpr size_t kLettersASlip = 3;
  size_t most = std::min(kMostSlips, written.size() / kLettersASlip);
  std::optional<std::string> nearest;
  for (const std::string& name : names) {
    const size_t slips = slipsBetween(written, name);
    if (slips > most || (nearest && slips == most)) continue;
    nearest = name;
    most = slips;
  }
  return nearest;
}

}  // namespace velka::view
