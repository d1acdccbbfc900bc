// Ties the renderer to what it borrows, so that the encoders need nothing of the
// front end.
#include "DotPlacement.h"
#include "ESCPSML.h"

bool RenderEscpData(_DEVOBJ* devobj) noexcept {
  return velka::renderPage(devobj, velka::servicesOf(velka::placement()));
}
