// The end of a page of the standard model: form feed, copies, forms.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "CommandBuffer.h"
#include "CommandBytes.h"
#include "DeviceHandle.h"
#include "ESCPSML.h"
#include "StandardOutput.h"

bool CESCPSML::finishPage(bool complete, unsigned int copiesBefore) noexcept {
  if (complete) {
    m_Loss = velka::PageLoss::None;
  } else {
    // Half a page must not come back among the copies of the next one.
    m_dwCopyLen = std::min(m_dwCopyLen, copiesBefore);
  }
  return complete;
}

bool CESCPSML::SendPageCommands(_DEVOBJ* devobj, velka::CommandBuffer& commands) noexcept {
  if (!velka::isComplete(devobj)) return false;
  m_Loss = velka::PageLoss::Commands;
  const unsigned int copiesBefore = m_dwCopyLen;
  const bool complete =
      keepForm(*devobj) && keepForCopies(*devobj, commands) && endPage(*devobj, commands);
  return finishPage(complete, copiesBefore);
}

// Collated copies come one behind the other, without the commands that start a page: where
// forms differ, those that a page does not share with the one before go along.
bool CESCPSML::keepForm(const _DEVOBJ& devobj) noexcept {
  if (devobj.pOemDev->sCopies <= 1 || devobj.pOemPDEV->devModeOut.dmCollate != 1) return true;
  const int32_t lines = velka::formLines(devobj);
  const int32_t before = std::exchange(m_nKeptForm, lines);
  if (m_nFirstForm == 0) m_nFirstForm = lines;
  if (before == 0 || before == lines) return true;
  m_CopyPages.startWith(velka::pageLength(m_nFirstForm));
  unsigned int end = m_dwCopyLen;
  return velka::appendAt(&m_pCopyBuf, &m_dwCopyLen, &end, velka::pageLength(lines));
}

bool CESCPSML::keepForCopies(const _DEVOBJ& devobj, const velka::CommandBuffer& stream) noexcept {
  if (devobj.pOemDev->sCopies <= 1) return true;
  unsigned int end = m_dwCopyLen;
  return velka::appendAt(&m_pCopyBuf, &m_dwCopyLen, &end, stream.commands());
}

bool CESCPSML::endPage(const _DEVOBJ& devobj, velka::CommandBuffer& stream) noexcept {
  if (!stream.sink().append({&velka::kFormFeed, 1})) return false;
  velka::writeToPrinter(stream.commands());
  m_Loss = velka::PageLoss::Copies;
  return repeatPage(devobj);
}

bool CESCPSML::repeatPage(const _DEVOBJ& devobj) noexcept {
  const int copies = devobj.pOemDev->sCopies;
  if (copies <= 1) return true;
  unsigned int end = m_dwCopyLen;
  if (!velka::appendAt(&m_pCopyBuf, &m_dwCopyLen, &end, {&velka::kFormFeed, 1})) return false;
  // Collated copies follow at the end of the document.
  if (devobj.pOemPDEV->devModeOut.dmCollate == 1) {
    m_CopyPages.endAt(m_dwCopyLen);
    return true;
  }
  repeatKept(copies - 1);
  std::free(m_pCopyBuf);
  m_pCopyBuf = nullptr;
  m_dwCopyLen = 0;
  return true;
}
