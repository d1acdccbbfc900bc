#include "Pages.h"

#include <algorithm>
#include <array>

#include "ColoursPage.h"
#include "PlacementPage.h"
#include "PositionPage.h"
#include "RegistrationPage.h"
#include "TonesPage.h"

namespace velka::calibration {
namespace {

Drawn placement(const PageSettings& /*settings*/) {
  return placementPage();
}

constexpr std::array<Page, 5> kPages{{{"placement", placement, false},
                                      {"registration", registrationPage, true},
                                      {"position", positionPage, true},
                                      {"tones", tonesPage, true},
                                      {"colours", coloursPage, true}}};

}  // namespace

const Page* pageNamed(const std::string& name) {
  const auto* found = std::ranges::find(kPages, name, &Page::name);
  return found == kPages.end() ? nullptr : found;
}

std::string pageNames() {
  std::string names;
  for (const Page& page : kPages) names += (names.empty() ? "" : ", ") + std::string(page.name);
  return names;
}

}  // namespace velka::calibration
