#include "Vernier.h"

namespace velka::calibration {
namespace {

DotBox lineAt(const Vernier& vernier, int along, int across, Colour colour) {
  DotBox box{double(along), double(across), double(vernier.thick), double(vernier.length), colour};
  if (vernier.down) {
    std::swap(box.left, box.top);
    std::swap(box.width, box.height);
  }
  return box;
}

}  // namespace

DotBox fixedLine(const Vernier& vernier, int number) {
  return lineAt(vernier, vernier.zero + number * vernier.pitch, vernier.fixedAt, vernier.fixed);
}

DotBox movingLine(const Vernier& vernier, int number) {
  return lineAt(vernier, vernier.zero + number * (vernier.pitch - vernier.step), vernier.movingAt,
                vernier.moving);
}

}  // namespace velka::calibration
