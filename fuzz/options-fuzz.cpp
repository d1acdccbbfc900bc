// PPDs with any options, codes and text, any job options marked in them: what the options
// record becomes of it, for both models.
#include <cstdio>
#include <memory>

#include "AnyPpd.h"
#include "DotPlacement.h"
#include "InitalizeOemCfg.h"
#include "MarkedOptions.h"
#include "PageLimit.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

struct ClosePpd {
  void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

// Either the model's own value or the code of a choice.
bool isCode(int16_t value, int16_t before, const char* keyword, ppd_file_t* ppd) {
  const auto code = static_cast<int16_t>(GetOptionChoiceIndex(keyword, ppd));
  return value == before || value == code;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const std::string text = anyPpd(input);
  const MemoryFile file({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  const std::unique_ptr<ppd_file_t, ClosePpd> ppd(ppdOpenFile(file.path().c_str()));
  if (ppd == nullptr) return 0;
  cups_page_header2_t header = {};
  header.HWResolution[0] = input.number<unsigned>();
  header.HWResolution[1] = input.number<unsigned>();
  const std::string options = input.rest();
  markOptions(ppd.get(), options.c_str());

  tagOEMCFG record = {};
  InitalizeOemCfg(&record, ppd.get(), &header);
  const tagOEMCFG& model = defaultOemdev[ppd->model_number == 2 ? 1 : 0];
  require(isCode(record.SplitBlackRed, model.SplitBlackRed, "SplitBlackRed", ppd.get()));
  require(isCode(record.sDitherRed, model.sDitherRed, "HalftoneRed", ppd.get()));
  require(record.sHeadPins == model.sHeadPins);
  const DotPlacement placement = chosenPlacement(ppd.get());
  require(placement == DotPlacement::Original || placement == DotPlacement::Exact);
  require(mostPageBytes(ppd.get(), header) >= uint64_t{1} << 30U);
  (void)pagesComeFromPdf(ppd.get());
  return 0;
}
