#include "CameraPicture.h"

#include <algorithm>
#include <cmath>

namespace velka::bench {
namespace {

constexpr size_t kPixelBytes = 3;

using Light = CameraPicture::Light;

// Red, green and blue light that the surfaces throw back: sky, leaves, stone, earth,
// skin and bark.
constexpr Light kSurfaces[] = {{0.28F, 0.45F, 0.80F}, {0.10F, 0.20F, 0.04F}, {0.34F, 0.32F, 0.30F},
                               {0.30F, 0.15F, 0.07F}, {0.62F, 0.36F, 0.26F}, {0.16F, 0.11F, 0.08F}};

// Sizes of patches, in inches: of light and shade on the surfaces, and how strong; of the
// surfaces themselves, coarse and fine; of the light on the scene.
constexpr std::array<double, 4> kTextureInches = {0.9, 0.21, 0.06, 0.017};
constexpr std::array<float, 4> kTextureWeights = {0.45F, 0.30F, 0.22F, 0.15F};
constexpr std::array<double, 3> kSceneInches = {2.6, 0.35, 1.7};

uint32_t mixed(uint32_t a, uint32_t b, uint32_t c) noexcept {
  uint32_t h = a * 0x9E3779B1U ^ b * 0x85EBCA77U ^ c * 0xC2B2AE3DU;
  h = (h ^ (h >> 15U)) * 0x2C1B3C6DU;
  h = (h ^ (h >> 12U)) * 0x297A2D39U;
  return h ^ (h >> 15U);
}

float unit(uint32_t hash) noexcept {
  return static_cast<float>(hash >> 8U) / 16777216.0F;
}

// About normal, mean 0, deviation 1: the sum of a hash's four bytes.
float normal(uint32_t hash) noexcept {
  const uint32_t sum =
      (hash & 255U) + ((hash >> 8U) & 255U) + ((hash >> 16U) & 255U) + (hash >> 24U);
  return (static_cast<float>(sum) - 510.0F) / 147.8F;
}

float smooth(double t) noexcept {
  return static_cast<float>(t * t * (3 - 2 * t));
}

// The deviation of what the sensor counts: few photons in the shadows, and its own noise.
float deviation(float light) noexcept {
  return std::sqrt(0.00004F + 0.0011F * light);
}

// The surface at `place`, 0 to 1, with narrow borders between them.
Light surfaceAt(float place) noexcept {
  constexpr size_t kCount = std::size(kSurfaces);
  const float scaled = place * kCount;
  const size_t i = std::min(static_cast<size_t>(scaled), kCount - 1);
  const float into = std::clamp((scaled - static_cast<float>(i) - 0.9F) * 10, 0.0F, 1.0F);
  const Light& next = kSurfaces[std::min(i + 1, kCount - 1)];
  Light light = kSurfaces[i];
  for (size_t c = 0; c < kPixelBytes; ++c) light[c] += (next[c] - light[c]) * into;
  return light;
}

}  // namespace

CameraPicture::CameraPicture(unsigned xdpi, unsigned ydpi) : xdpi_(xdpi), ydpi_(ydpi) {
  for (size_t i = 0; i < gamma_.size(); ++i)
    gamma_[i] = static_cast<uint8_t>(std::lround(
        255 * std::pow(static_cast<double>(i) / static_cast<double>(gamma_.size() - 1), 1 / 2.2)));
}

void CameraPicture::patches(double inches, unsigned seed, unsigned y,
                            std::vector<float>& values) const {
  const double down = y / (inches * ydpi_);
  const auto row = static_cast<uint32_t>(down);
  const float lower = smooth(down - row);
  uint32_t column = ~0U;
  float left = 0;
  float right = 0;
  for (size_t x = 0; x < values.size(); ++x) {
    const double across = static_cast<double>(x) / (inches * xdpi_);
    if (static_cast<uint32_t>(across) != column) {
      column = static_cast<uint32_t>(across);
      const auto edge = [&](uint32_t at) {
        const float upper = unit(mixed(at, row, seed));
        return upper + (unit(mixed(at, row + 1, seed)) - upper) * lower;
      };
      left = edge(column);
      right = edge(column + 1);
    }
    values[x] = left + (right - left) * smooth(across - column);
  }
}

CameraPicture::Light CameraPicture::lightAt(size_t x) const {
  const float place = 1.6F * (0.75F * scene_[0][x] + 0.25F * scene_[1][x]) - 0.3F;
  float strength = 0.1F + 3.2F * scene_[2][x] * scene_[2][x];
  for (size_t i = 0; i < kTextureInches.size(); ++i)
    strength *= 1 + 2 * kTextureWeights[i] * (texture_[i][x] - 0.5F);
  Light light = surfaceAt(std::clamp(place, 0.0F, 0.999F));
  for (float& channel : light) channel *= strength;
  return light;
}

void CameraPicture::draw(unsigned y, std::span<uint8_t> row) {
  const size_t width = row.size() / kPixelBytes;
  unsigned seed = 0;
  for (size_t i = 0; i < kTextureInches.size(); ++i) {
    texture_[i].resize(width);
    patches(kTextureInches[i], ++seed, y, texture_[i]);
  }
  for (size_t i = 0; i < kSceneInches.size(); ++i) {
    scene_[i].resize(width);
    patches(kSceneInches[i], ++seed, y, scene_[i]);
  }
  Light before{};  // the noise of the pixel to the left
  for (size_t x = 0; x < width; ++x) {
    const Light light = lightAt(x);
    for (size_t c = 0; c < kPixelBytes; ++c) {
      // Half of a pixel's noise is its neighbour's too: a sensor has one colour a cell.
      const float noise =
          normal(mixed(static_cast<uint32_t>(x), y, seed + 1 + static_cast<uint32_t>(c)));
      const float counted = light[c] + 0.7F * (noise + before[c]) * deviation(light[c]);
      before[c] = noise;
      row[kPixelBytes * x + c] =
          gamma_[static_cast<size_t>(std::clamp(counted, 0.0F, 1.0F) * 4095)];
    }
  }
}

}  // namespace velka::bench
