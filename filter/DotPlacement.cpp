#include "DotPlacement.h"

#include "ExactPages.h"
#include "ExactPlacement.h"
#include "InitalizeOemCfg.h"
#include "OrloPage.h"
#include "PreInc.h"

namespace velka {
namespace {

DotPlacement chosen = DotPlacement::Original;

constexpr PageServices kOriginal = {
    .freePageBuffer = vFreeBuffer,
    .movePageBuffer = vMoveBufferToOutput,
    .freeOutputBuffer = vFreeOutputBuffer,
    .freeSections = vFreeSectionRect,
    .sendOrloPage = sendOrloPage,
};

constexpr PageServices exact() noexcept {
  PageServices services = kOriginal;
  services.growGeometry = growGeometryExactly;
  services.placePage = placePageExactly;
  services.sendStandardPage = sendExactStandardPage;
  services.sendOrloPage = sendExactOrloPage;
  return services;
}
constexpr PageServices kExact = exact();

}  // namespace

DotPlacement chosenPlacement(ppd_file_t* ppd) noexcept {
  constexpr int kExactCode = 1;
  return GetOptionChoiceIndex("DotPlacement", ppd) == kExactCode ? DotPlacement::Exact
                                                                 : DotPlacement::Original;
}

void setPlacement(DotPlacement placement) noexcept {
  chosen = placement;
}

DotPlacement placement() noexcept {
  return chosen;
}

const PageServices& servicesOf(DotPlacement placement) noexcept {
  return placement == DotPlacement::Exact ? kExact : kOriginal;
}

}  // namespace velka
