// The printer's options as its PPD has them, and what of them a page may ask for.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "DeviceRecords.h"
#include "Message.h"
#include "OptionsFile.h"
#include "Ppd.h"

namespace velka::serve {

using view::Settings;

struct OptionChoice {
  std::string name;  ///< as jobs state it
  std::string text;  ///< as dialogs show it
};

struct PrinterOption {
  std::string keyword;
  std::string text;
  std::string usual;  ///< the choice where nothing is stated
  std::vector<OptionChoice> choices;
};

struct OptionGroup {
  std::string text;
  std::vector<PrinterOption> options;
};

/// Why something that was asked for is not done.
struct Refusal {
  std::string why;
};

/// May be used from several threads.
class PrinterOptions {
 public:
  /// Reads a PPD, in the user's language where it has that. `options` are the command
  /// line's: those that the PPD knows are where the page begins, the others stay with every
  /// job.
  PrinterOptions(const std::string& ppd, const std::string& options);

  [[nodiscard]] const view::Problem& trouble() const { return trouble_; }

  /// In the order of dialogs, without what those hide.
  [[nodiscard]] const std::vector<OptionGroup>& groups() const { return groups_; }
  /// Null where there is none.
  [[nodiscard]] const PrinterOption* find(const std::string& keyword) const;

  [[nodiscard]] const Settings& initial() const { return initial_; }

  /// Settings from pairs of an option and a choice, each of them the PPD's own by letter;
  /// in the PPD's order, without those that are as usual.
  [[nodiscard]] std::variant<Settings, Refusal> read(const Pairs& asked) const;

  /// With what stays with every job.
  [[nodiscard]] Settings whole(const Settings& settings) const;
  /// The same as a job states them.
  [[nodiscard]] std::string jobText(const Settings& settings) const;
  /// Those alone that the raster of a page depends on.
  [[nodiscard]] Settings ofRaster(const Settings& settings) const;

  /// What the filter makes of them.
  [[nodiscard]] tagOEMCFG record(const Settings& settings) const;

 private:
  void takeGroup(const ppd_group_t& group);
  void takeCommandLine(const std::string& options);
  [[nodiscard]] std::string shownChoice(const std::string& keyword, const std::string& value);

  view::Problem trouble_;
  mutable std::mutex mutex_;  // of the PPD and its marks
  view::PpdFile ppd_;
  std::vector<OptionGroup> groups_;
  Settings common_;
  Settings initial_;
};

/// The value of a setting; the option's usual one where it is not stated.
[[nodiscard]] std::string valueOf(const PrinterOptions& options, const Settings& settings,
                                  const std::string& keyword);

/// The settings with another choice of an option.
[[nodiscard]] Settings changed(const PrinterOptions& options, const Settings& settings,
                               const std::string& keyword, const std::string& value);

}  // namespace velka::serve
