// The command senders and builders of the standard model's public surface.
#include "CommandBuilders.h"
#include "DeviceHandle.h"
#include "ESCPSML.h"
#include "StandardOutput.h"

bool CESCPSML::SendStartDocCmd(_DEVOBJ* devobj) noexcept {
  if (!velka::isComplete(devobj)) return false;
  velka::writeToPrinter(velka::startDocument(velka::formLines(*devobj)));
  return true;
}

bool CESCPSML::SendEndDocCmd(_DEVOBJ* /*devobj*/) noexcept {
  velka::writeToPrinter(velka::endDocument());
  return true;
}

bool CESCPSML::SendEndPageCmd(_DEVOBJ* /*devobj*/) noexcept {
  velka::writeToPrinter({&velka::kFormFeed, 1});
  return true;
}

bool CESCPSML::SendEjectModeCmd(_DEVOBJ* devobj) noexcept {
  if (!velka::isComplete(devobj)) return false;
  const auto command = velka::ejectMode(*devobj->pOemDev, devobj->pOemPDEV->dwCurPageNum);
  if (command) velka::writeToPrinter(*command);
  return true;
}

unsigned int CESCPSML::SendCommand(_DEVOBJ* /*devobj*/, const unsigned char* data,
                                   unsigned int length, unsigned char /*flag*/,
                                   const wchar_t* /*name*/) noexcept {
  if (data == nullptr) return 0;
  return static_cast<unsigned int>(velka::writeToPrinter({data, length}));
}

bool CESCPSML::SendCollatedCopies(_DEVOBJ* devobj) noexcept {
  if (!velka::isComplete(devobj) || m_pCopyBuf == nullptr) return true;
  repeatKept(devobj->pOemDev->sCopies - 1);
  return true;
}

void CESCPSML::repeatKept(int times) const noexcept {
  m_CopyPages.repeat({m_pCopyBuf, m_dwCopyLen}, times, m_pCanceled);
}

bool CESCPSML::GetSetUnitCmd(int unit, unsigned char** buffer, unsigned int* capacity,
                             unsigned int* length) noexcept {
  return velka::buildSetUnit(unit, {buffer, capacity, length});
}

bool CESCPSML::GetXMoveCmd(short kind, float divisor, int x, unsigned char** buffer,
                           unsigned int* capacity, unsigned int* length) noexcept {
  return velka::buildXMove(kind, divisor, x, {buffer, capacity, length});
}

bool CESCPSML::GetRelativeYMoveCmd(short ydpi, int dy, unsigned char** buffer,
                                   unsigned int* capacity, unsigned int* length) noexcept {
  return velka::buildRelativeYMove(ydpi, dy, {buffer, capacity, length});
}

bool CESCPSML::GetAdvancesYMoveCmd(short ydpi, int dy, unsigned char** buffer,
                                   unsigned int* capacity, unsigned int* length) noexcept {
  return velka::buildAdvanceYMove(ydpi, dy, {buffer, capacity, length});
}

bool CESCPSML::GetEndPageCmd(unsigned char** buffer, unsigned int* capacity,
                             unsigned int* length) noexcept {
  return velka::deliver({buffer, capacity, length}, {&velka::kFormFeed, 1},
                        velka::Capacity::Trusted);
}

bool CESCPSML::GetEjectModeCmd(_DEVOBJ* devobj, unsigned char** buffer, unsigned int* capacity,
                               unsigned int* length) noexcept {
  const velka::BuilderOutput out = {buffer, capacity, length};
  if (!velka::isComplete(devobj) || !out.isComplete()) return false;
  const auto command = velka::ejectMode(*devobj->pOemDev, devobj->pOemPDEV->dwCurPageNum);
  if (command) return velka::deliver(out, *command, velka::Capacity::Trusted);
  velka::reportWritten(out, 0);
  return true;
}

bool CESCPSML::GrowBMPMem(unsigned char** buffer, unsigned int* size, unsigned int extra,
                          short fill) noexcept {
  return velka::growBuffer(buffer, size, extra, static_cast<uint8_t>(fill));
}
