// Ordered halftone screens: each cell's rank in the order in which cells blank
// out as the plane gets lighter. Two turned spirals make up each screen.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace velka {

/// A square screen of ranks; a rank times `scale` is a cell's threshold. A plane's
/// column selects the screen's row.
template <size_t N>
struct Screen {
  unsigned scale;
  std::array<std::array<uint8_t, N>, N> rank;
};

template <size_t N>
constexpr unsigned sumOfRanks(const Screen<N>& screen) {
  unsigned sum = 0;
  for (const auto& row : screen.rank) {
    for (const uint8_t rank : row) {
      sum += rank;
    }
  }
  return sum;
}

// clang-format off
inline constexpr Screen<6> kScreen6{14, {{
    {{ 9, 11, 10,  8,  6,  7}},
    {{12, 17, 16,  5,  0,  1}},
    {{13, 14, 15,  4,  3,  2}},
    {{ 8,  6,  7,  9, 11, 10}},
    {{ 5,  0,  1, 12, 17, 16}},
    {{ 4,  3,  2, 13, 14, 15}},
}}};

inline constexpr Screen<8> kScreen8{8, {{
    {{18, 20, 19, 16, 13, 11, 12, 15}},
    {{27, 28, 29, 22,  4,  3,  2,  9}},
    {{26, 31, 30, 21,  5,  0,  1, 10}},
    {{23, 25, 24, 17,  8,  6,  7, 14}},
    {{13, 11, 12, 15, 18, 20, 19, 16}},
    {{ 4,  3,  2,  9, 27, 28, 29, 22}},
    {{ 5,  0,  1, 10, 26, 31, 30, 21}},
    {{ 8,  6,  7, 14, 23, 25, 24, 17}},
}}};

inline constexpr Screen<12> kScreen12{3, {{
    {{38, 44, 53, 52, 43, 37, 33, 27, 18, 19, 28, 34}},
    {{45, 58, 60, 59, 56, 42, 26, 13, 11, 12, 15, 29}},
    {{54, 63, 65, 64, 61, 51, 17,  8,  6,  7, 10, 20}},
    {{55, 66, 71, 70, 62, 50, 16,  5,  0,  1,  9, 21}},
    {{46, 67, 68, 69, 57, 41, 25,  4,  3,  2, 14, 30}},
    {{39, 47, 48, 49, 40, 36, 32, 24, 23, 22, 31, 35}},
    {{33, 27, 18, 19, 28, 34, 38, 44, 53, 52, 43, 37}},
    {{26, 13, 11, 12, 15, 29, 45, 58, 60, 59, 56, 42}},
    {{17,  8,  6,  7, 10, 20, 54, 63, 65, 64, 61, 51}},
    {{16,  5,  0,  1,  9, 21, 55, 66, 71, 70, 62, 50}},
    {{25,  4,  3,  2, 14, 30, 46, 67, 68, 69, 57, 41}},
    {{32, 24, 23, 22, 31, 35, 39, 47, 48, 49, 40, 36}},
}}};

inline constexpr Screen<16> kScreen16{2, {{
    {{ 64,  69,  77,  87,  86,  76,  68,  67,  63,  58,  50,  40,  41,  51,  59,  60}},
    {{ 70,  94, 100, 109, 108,  99,  93,  75,  57,  33,  27,  18,  19,  28,  34,  52}},
    {{ 78, 101, 114, 116, 115, 112,  98,  83,  49,  26,  13,  11,  12,  15,  29,  44}},
    {{ 88, 110, 123, 124, 125, 118, 107,  85,  39,  17,   4,   3,   2,   9,  20,  42}},
    {{ 89, 111, 122, 127, 126, 117, 106,  84,  38,  16,   5,   0,   1,  10,  21,  43}},
    {{ 79, 102, 119, 121, 120, 113,  97,  82,  48,  25,   8,   6,   7,  14,  30,  45}},
    {{ 71,  95, 103, 104, 105,  96,  92,  74,  56,  32,  24,  23,  22,  31,  35,  53}},
    {{ 65,  72,  80,  90,  91,  81,  73,  66,  62,  55,  47,  37,  36,  46,  54,  61}},
    {{ 63,  58,  50,  40,  41,  51,  59,  60,  64,  69,  77,  87,  86,  76,  68,  67}},
    {{ 57,  33,  27,  18,  19,  28,  34,  52,  70,  94, 100, 109, 108,  99,  93,  75}},
    {{ 49,  26,  13,  11,  12,  15,  29,  44,  78, 101, 114, 116, 115, 112,  98,  83}},
    {{ 39,  17,   4,   3,   2,   9,  20,  42,  88, 110, 123, 124, 125, 118, 107,  85}},
    {{ 38,  16,   5,   0,   1,  10,  21,  43,  89, 111, 122, 127, 126, 117, 106,  84}},
    {{ 48,  25,   8,   6,   7,  14,  30,  45,  79, 102, 119, 121, 120, 113,  97,  82}},
    {{ 56,  32,  24,  23,  22,  31,  35,  53,  71,  95, 103, 104, 105,  96,  92,  74}},
    {{ 62,  55,  47,  37,  36,  46,  54,  61,  65,  72,  80,  90,  91,  81,  73,  66}},
}}};

// clang-format on

// Each rank stands in a screen twice.
static_assert(sumOfRanks(kScreen6) == 18 * 17);
static_assert(kScreen6.rank[0][0] == 9 && kScreen6.rank[5][5] == 15);
static_assert(sumOfRanks(kScreen8) == 32 * 31);
static_assert(kScreen8.rank[0][0] == 18 && kScreen8.rank[7][7] == 17);
static_assert(sumOfRanks(kScreen12) == 72 * 71);
static_assert(kScreen12.rank[0][0] == 38 && kScreen12.rank[11][11] == 36);
static_assert(sumOfRanks(kScreen16) == 128 * 127);
static_assert(kScreen16.rank[0][0] == 64 && kScreen16.rank[15][15] == 66);

}  // namespace velka
