// What a printer model offers, read from its PPD: the one description that serves print
// queues with a PPD and this application's drivers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velka::app {

struct Choice {
  std::string name;  ///< as a job states it
  std::string text;  ///< as a person reads it, in English
};

/// An option of the filter's own. Old names of choices are left out: nobody can have
/// stored them for a printer of this application.
struct VendorOption {
  std::string name;
  std::string text;
  std::vector<Choice> choices;
  std::string defaultChoice;
};

/// A size of paper in hundredths of a millimetre, by its self-describing name.
struct Paper {
  std::string media;
  int width = 0;
  int length = 0;
};

/// Dots per inch across and along the paper.
struct Resolution {
  int x = 0;
  int y = 0;
  bool operator==(const Resolution&) const = default;
};

struct Model {
  std::string driver;        ///< "velka_standard"
  std::string makeAndModel;  ///< "Velka Standard"
  std::string_view ppd;
  bool copiesByPrinter = false;  ///< the filter makes copies of pages; else they come again
  std::vector<VendorOption> options;
  std::vector<Resolution> resolutions;  ///< all of the head
  std::vector<Paper> papers;
  Paper defaultPaper;
  Paper smallest;  ///< bounds of custom sizes
  Paper largest;

  [[nodiscard]] const VendorOption* option(std::string_view name) const noexcept;
};

/// Both models; read once. Empty where the PPDs cannot be read.
[[nodiscard]] const std::vector<Model>& models();

/// The model of a driver's name, null where there is none.
[[nodiscard]] const Model* modelOf(std::string_view driver);

/// "180dpi" and "120x180dpi" as two numbers; zeros for anything else.
[[nodiscard]] Resolution resolutionOf(std::string_view choice) noexcept;

}  // namespace velka::app
