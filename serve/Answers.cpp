#include "Answers.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "Head.h"
#include "PageFiles.h"
#include "PageRows.h"
#include "Parameters.h"
#include "Pieces.h"
#include "Scaling.h"
#include "StreamStats.h"
#include "WantedInk.h"

namespace velka::serve {
namespace {

using nlohmann::ordered_json;

constexpr double kUnitsPerMillimetre = static_cast<double>(decode::kUnitsPerInch) / 25.4;

Response told(int status, const std::string& why) {
  return {status, "text/plain; charset=utf-8", why + "\n", {}};
}

// Names of files and texts of PPDs may be in any code.
Response told(const ordered_json& json) {
  return {kOk,
          "application/json",
          json.dump(-1, ' ', false, ordered_json::error_handler_t::replace),
          {}};
}

Response told(const Failure& failure) {
  return told(failure.outdated ? kOutdated : kUnprintable, failure.why);
}

std::string typeOf(const std::string& file) {
  if (file.ends_with(".css")) return "text/css; charset=utf-8";
  if (file.ends_with(".js")) return "text/javascript; charset=utf-8";
  return "text/html; charset=utf-8";
}

ordered_json jsonOf(const Settings& settings) {
  ordered_json json = ordered_json::object();
  for (const auto& [name, value] : settings) json[name] = value;
  return json;
}

ordered_json jsonOf(const PrinterOption& option) {
  ordered_json json = {{"keyword", option.keyword}, {"text", option.text}, {"usual", option.usual}};
  json["choices"] = ordered_json::array();
  for (const OptionChoice& choice : option.choices)
    json["choices"].push_back({{"name", choice.name}, {"text", choice.text}});
  return json;
}

const char* nameOf(Ink ink) {
  return ink == Ink::Red ? "red" : ink == Ink::Black ? "black" : "none";
}

std::string textOfColour(uint32_t rgb) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "#";
  for (unsigned shift = 24; shift > 0; shift -= 4)
    text.push_back(kDigits[(rgb >> (shift - 4U)) & 0xFU]);
  return text;
}

// A piece of a picture, and the size of the whole in headers.
Response drawn(view::RowsDrawing drawing, double dpi, const Frame& frame) {
  if (const auto* why = std::get_if<std::string>(&drawing)) return told(kUnprintable, *why);
  view::PictureRows& rows = *std::get<view::Rows>(drawing);
  const Frame piece = onPicture(frame, rows.size());
  const auto text = [](int64_t number) { return std::to_string(number); };
  return {kOk,
          "application/octet-stream",
          drawPiece(rows, piece),
          {{"Velka-Whole", text(rows.size().width) + " " + text(rows.size().height)},
           {"Velka-Piece", text(piece.left) + " " + text(piece.top) + " " + text(piece.width) +
                               " " + text(piece.height)},
           {"Velka-Dpi", std::to_string(dpi)}}};
}

ordered_json jsonOf(const InkRules& rules, const ColourGroup& group, double all) {
  const auto inks = inksOf(rules, group);
  const auto share = [all](uint64_t pixels) { return static_cast<double>(pixels) / all; };
  return {{"rgb", textOfColour(group.rgb)}, {"ink", nameOf(dotOf(rules, group.rgb).ink)},
          {"share", share(group.pixels)},   {"none", share(inks[0])},
          {"black", share(inks[1])},        {"red", share(inks[2])}};
}

double pixelsOf(const std::vector<ColourGroup>& groups) {
  double all = 0;
  for (const ColourGroup& group : groups) all += static_cast<double>(group.pixels);
  return std::max(all, 1.0);
}

// How much of paper's white a colour lacks.
int inkiness(uint32_t rgb) {
  const uint32_t lacks = 0xFFFFFFU - rgb;
  return static_cast<int>(std::max({lacks >> 16U, (lacks >> 8U) & 0xFFU, lacks & 0xFFU}));
}

struct Place {
  int64_t x = 0;
  int64_t y = 0;
};

// The fullest colour near a place: who clicks a letter means its ink, not its edge.
std::optional<Place> fullestNear(const RasterPixels& pixels, const MillimetrePlace& at) {
  const auto pixel = [](double mm, double dpi) {
    return static_cast<int64_t>(std::floor(mm / 25.4 * dpi));
  };
  const Place middle{pixel(at.x, pixels.acrossDpi), pixel(at.y, pixels.alongDpi)};
  const auto on = [](int64_t place, int64_t size) { return place >= 0 && place < size; };
  if (!on(middle.x, pixels.width) || !on(middle.y, pixels.height)) return std::nullopt;
  Place best = middle;
  const int64_t across = pixel(at.reach, pixels.acrossDpi);
  const int64_t along = pixel(at.reach, pixels.alongDpi);
  for (int64_t y = middle.y - along; y <= middle.y + along; ++y) {
    for (int64_t x = middle.x - across; x <= middle.x + across; ++x) {
      if (!on(x, pixels.width) || !on(y, pixels.height)) continue;
      if (inkiness(pixels.at(x, y)) > inkiness(pixels.at(best.x, best.y))) best = {x, y};
    }
  }
  return best;
}

}  // namespace

Response Answers::to(const std::string& path, const Request& request) const {
  if (const auto file = pageFile(path.empty() ? "index.html" : path))
    return {kOk, typeOf(path), std::string(*file), {}};
  if (path == "options") return options();
  return ofWish(path, request);
}

Response Answers::ofWish(const std::string& path, const Request& request) const {
  const auto read = wishOf(request, subject_.options);
  if (const auto* refusal = std::get_if<Refusal>(&read)) return told(kBadRequest, refusal->why);
  const Wish& wish = std::get<Wish>(read);
  if (path == "lines") return lines(wish.settings);
  if (path == "velka.options") return savedSettings(wish.settings);
  if (path == "paper") return paper(wish, request);
  if (path == "original") return original(wish, request);
  if (path == "facts") return facts(wish);
  if (path == "colours") return colours(wish);
  if (path == "place") return place(wish, request);
  if (path == "wanted") return wanted(wish, request);
  return told(kNotFound, "there is nothing of that name");
}

Response Answers::options() const {
  ordered_json json = {{"document", subject_.shown},
                       {"ppd", subject_.ppd},
                       {"page", subject_.page},
                       {"settings", jsonOf(subject_.options.initial())},
                       {"groups", ordered_json::array()}};
  for (const OptionGroup& group : subject_.options.groups()) {
    ordered_json options = ordered_json::array();
    for (const PrinterOption& option : group.options) options.push_back(jsonOf(option));
    json["groups"].push_back({{"text", group.text}, {"options", options}});
  }
  return told(json);
}

Response Answers::lines(const Settings& settings) const {
  const auto joined = [](const std::string& text) { return text.empty() ? "" : " " + text; };
  Settings usual;
  // What is none of the PPD's has its default under another name.
  for (const auto& [name, value] : subject_.options.whole(settings))
    usual.emplace_back(subject_.options.find(name) == nullptr ? name + "-default" : name, value);
  const std::string job = view::asArguments(subject_.options.whole(settings), " ");
  return told({{"lp", "lp -d QUEUE" + joined(job) + " " + view::quoted(subject_.fileName)},
               {"lpadmin",
                usual.empty() ? "" : "lpadmin -p QUEUE" + joined(view::asArguments(usual, " "))}});
}

Response Answers::savedSettings(const Settings& settings) const {
  const Settings whole = subject_.options.whole(settings);
  return {kOk,
          "text/plain; charset=utf-8",
          view::asArguments(whole, "\n") + (whole.empty() ? "" : "\n"),
          {{"Content-Disposition", "attachment; filename=\"velka.options\""}}};
}

Response Answers::paper(const Wish& wish, const Request& request) const {
  const auto look = lookOf(request);
  if (!look) return told(kBadRequest, kNoLook);
  const auto found = subject_.bench.print(wish);
  if (const auto* failure = std::get_if<Failure>(&found)) return told(*failure);
  const PrintedPage& page = *std::get<Workbench::Page>(found);
  view::PaperView view = page.view;
  view.dpi = look->dpi;
  view.pins = look->pins;
  return drawn(view::pageRows(page.page, view), look->dpi, look->frame);
}

Response Answers::original(const Wish& wish, const Request& request) const {
  const auto look = lookOf(request);
  if (!look) return told(kBadRequest, kNoLook);
  const auto found = subject_.bench.raster(wish);
  if (const auto* failure = std::get_if<Failure>(&found)) return told(*failure);
  const KeptRaster& raster = *std::get<Workbench::Raster>(found);
  if (raster.unshown()) return told(kUnprintable, *raster.unshown());
  return drawn(view::scaled(rowsOf(raster.pixels()), look->dpi), look->dpi, look->frame);
}

Response Answers::facts(const Wish& wish) const {
  const auto found = subject_.bench.print(wish);
  if (const auto* failure = std::get_if<Failure>(&found)) return told(*failure);
  const PrintedPage& page = *std::get<Workbench::Page>(found);
  const decode::StreamStats stats =
      decode::readStats(page.stream.bytes, page.stream.model, decode::Speeds{}, page.view.width);
  const decode::Paper paper = page.paper();
  ordered_json json = {{"width", static_cast<double>(paper.width) / kUnitsPerMillimetre},
                       {"length", static_cast<double>(paper.length) / kUnitsPerMillimetre},
                       {"blank", page.blank},
                       {"flaws", page.flaws},
                       {"seconds", stats.seconds},
                       {"bytes", stats.bytes}};
  if (stats.coverage) json["coverage"] = {(*stats.coverage)[0], (*stats.coverage)[1]};
  return told(json);
}

Response Answers::colours(const Wish& wish) const {
  const auto found = subject_.bench.raster(wish);
  if (const auto* failure = std::get_if<Failure>(&found)) return told(*failure);
  const auto& groups = std::get<Workbench::Raster>(found)->colours();
  const InkRules rules = rulesOf(subject_.options, wish.settings);
  ordered_json json = ordered_json::array();
  for (const ColourGroup& group : groups) json.push_back(jsonOf(rules, group, pixelsOf(groups)));
  return told({{"colours", json}});
}

Response Answers::place(const Wish& wish, const Request& request) const {
  if (const auto rgb = colourOf(request)) return colour(wish.settings, *rgb);
  const auto at = placeOf(request);
  if (!at) return told(kBadRequest, "a place is x, y and reach in millimetres, or rgb");
  const auto found = subject_.bench.raster(wish);
  if (const auto* failure = std::get_if<Failure>(&found)) return told(*failure);
  const RasterPixels& pixels = std::get<Workbench::Raster>(found)->pixels();
  const auto pixel = fullestNear(pixels, *at);
  if (!pixel) return told(kNotFound, "the place lies beside the page");
  return colour(wish.settings, pixels.at(pixel->x, pixel->y));
}

Response Answers::colour(const Settings& settings, uint32_t rgb) const {
  const InkDot dot = dotOf(rulesOf(subject_.options, settings), rgb);
  ordered_json json = {{"rgb", textOfColour(rgb)},
                       {"ink", nameOf(dot.ink)},
                       {"grey", dot.value},
                       {"steps", ordered_json::array()}};
  for (const BoundStep& step : boundSteps(subject_.options, settings, rgb))
    json["steps"].push_back(
        {{"keyword", step.keyword}, {"value", step.value}, {"ink", nameOf(step.ink)}});
  return told(json);
}

Response Answers::wanted(const Wish& wish, const Request& request) const {
  const auto ink = inkWishOf(request);
  if (!ink) return told(kBadRequest, "a wish is ink=red or ink=black and rgb=RRGGBB");
  const auto found = subject_.bench.raster(wish);
  if (const auto* failure = std::get_if<Failure>(&found)) return told(*failure);
  const auto& groups = std::get<Workbench::Raster>(found)->colours();
  const auto way = settingsFor(*ink, subject_.options, wish.settings, groups);
  if (const auto* refusal = std::get_if<Refusal>(&way)) return told({{"why", refusal->why}});
  const auto& settings = std::get<Settings>(way);
  ordered_json json = {{"settings", jsonOf(settings)}, {"turned", ordered_json::array()}};
  const double all = pixelsOf(groups);
  for (const Turned& turned : whatTurns(rulesOf(subject_.options, wish.settings),
                                        rulesOf(subject_.options, settings), groups)) {
    json["turned"].push_back({{"rgb", textOfColour(groups[turned.group].rgb)},
                              {"red", static_cast<double>(turned.toRed) / all},
                              {"black", static_cast<double>(turned.toBlack) / all},
                              {"none", static_cast<double>(turned.toNone) / all}});
  }
  return told(json);
}

}  // namespace velka::serve
