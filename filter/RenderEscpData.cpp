// Ties the renderer to what it borrows, so that the encoders need nothing of the
// front end.
#include "ESCPSML.h"
#include "OrloPage.h"
#include "PreInc.h"

bool RenderEscpData(_DEVOBJ* devobj) noexcept {
  constexpr velka::PageServices kServices = {
      .freePageBuffer = vFreeBuffer,
      .movePageBuffer = vMoveBufferToOutput,
      .freeOutputBuffer = vFreeOutputBuffer,
      .freeSections = vFreeSectionRect,
      .sendOrloPage = velka::sendOrloPage,
  };
  return velka::renderPage(devobj, kServices);
}
