// Where the programs of the chain are.
#pragma once

#include <string>
#include <vector>

#include "Files.h"
#include "Outcome.h"
#include "WorkFolder.h"

namespace velka::view {

class ChainTools {
 public:
  ChainTools(const WorkFolder& folder, const SignalsHeld& held) : folder_(folder), held_(held) {}

  /// Looks for our filter, and for the folder of the system's.
  [[nodiscard]] Problem find();

  /// The system's filters from a document to a raster. `type` is the document's where
  /// the job states it; else the print system looks at its name and contents.
  [[nodiscard]] Problem findWay(const std::string& document, const std::string& type,
                                std::vector<std::string>& filters);

  /// The way to a filter of the system's; what is wrong where there is none.
  [[nodiscard]] std::string pathOf(const std::string& filter) const { return system_ + filter; }
  /// The folder that those of the filters lie in.
  [[nodiscard]] std::string serverFolder() const;
  [[nodiscard]] Problem missing(const std::string& filter) const;

  [[nodiscard]] const std::string& ownFilter() const { return own_; }

 private:
  [[nodiscard]] std::string filterFolder();
  [[nodiscard]] Problem usualWay(const std::string& document,
                                 std::vector<std::string>& filters) const;

  const WorkFolder& folder_;
  const SignalsHeld& held_;
  std::string system_;
  std::string own_;
};

/// The first tool that pages from a PDF copy need and the PATH has not.
[[nodiscard]] Problem missingPdfTool();

}  // namespace velka::view
