#include "TestPage.h"

#include <array>
#include <string>

#include "TextFormat.h"

namespace velka::serve {
namespace {

using decode::format;

struct NamedColour {
  const char* name;
  double red;
  double green;
  double blue;
};

constexpr std::array<NamedColour, 12> kColours{{{"red", 0.85, 0, 0},
                                                {"signal red", 1, 0, 0},
                                                {"orange", 0.95, 0.5, 0},
                                                {"yellow", 0.95, 0.8, 0},
                                                {"brown", 0.5, 0.25, 0.1},
                                                {"pink", 0.95, 0.55, 0.65},
                                                {"purple", 0.55, 0.1, 0.55},
                                                {"blue", 0, 0.2, 0.75},
                                                {"light blue", 0.3, 0.6, 0.9},
                                                {"green", 0, 0.5, 0.2},
                                                {"grey", 0.5, 0.5, 0.5},
                                                {"black", 0, 0, 0}}};

// Points from the left and the bottom.
struct Spot {
  double x;
  double y;
};

std::string text(const char* font, double size, Spot at, const std::string& words) {
  return format("BT /%s %g Tf %g %g Td (%s) Tj ET\n", font, size, at.x, at.y, words.c_str());
}

std::string fill(const NamedColour& colour) {
  return format("%g %g %g rg\n", colour.red, colour.green, colour.blue);
}

constexpr const char* kPage =
    "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R /Resources << /Font "
    "<< /Roman 5 0 R /Bold 6 0 R >> /Shading << /Soft 7 0 R >> >> >>";

std::string box(Spot at, double width, double height) {
  return format("%g %g %g %g re f\n", at.x, at.y, width, height);
}

std::string colours() {
  std::string page;
  for (size_t i = 0; i < kColours.size(); ++i) {
    const NamedColour& colour = kColours.at(i);
    const size_t column = i % 3;
    const size_t row = i / 3;
    const Spot at{60.0 + 165 * static_cast<double>(column), 560 - 34 * static_cast<double>(row)};
    page += fill(colour) + box(at, 40, 22);
    page += text("Bold", 16, {at.x + 48, at.y + 5}, colour.name);
  }
  return page;
}

std::string wedges() {
  std::string page;
  constexpr int kSteps = 12;
  for (int i = 0; i < kSteps; ++i) {
    const double light = static_cast<double>(i) / kSteps;
    const double x = 60 + 39.5 * i;
    page += fill({"", light, light, light}) + box({x, 365}, 39.5, 32);
    page += fill({"", 0.85 + 0.15 * light, light, light}) + box({x, 325}, 39.5, 32);
  }
  return page;
}

std::string lines() {
  std::string page = "0 0 0 RG\n";
  double y = 300;
  for (const double width : {0.2, 0.4, 0.7, 1.0, 2.0}) {
    page += format("%g w 0 0 0 RG 60 %g m 290 %g l S\n", width, y, y);
    page += format("%g w 0.85 0 0 RG 305 %g m 535 %g l S\n", width, y, y);
    y -= 9;
  }
  return page;
}

std::string content() {
  std::string page = fill(kColours[0]) + text("Bold", 26, {60, 762}, "Velka test page");
  page += "0.85 0 0 RG 2 w 60 750 m 535 750 l S\n" + fill(kColours[11]);
  page += text("Roman", 12, {60, 722}, "What is red in a document prints red, the rest black.");
  page += text("Roman", 12, {60, 705}, "Move the bounds of the range until that is so.");
  page += text("Roman", 9, {60, 685}, "Nine points: invoice 4711, payable within 14 days net.");
  page += text("Roman", 7, {60, 671}, "Seven points: general terms and conditions apply.");
  page += fill(kColours[0]) + text("Roman", 12, {375, 722}, "Total due: 1,284.50");
  page += text("Roman", 9, {375, 705}, "Nine points in red: final reminder");
  page += text("Bold", 20, {375, 676}, "URGENT") + fill(kColours[11]);
  page += text("Bold", 11, {60, 600}, "Colours");
  page += text("Bold", 11, {60, 408}, "Tints");
  page += colours() + wedges() + lines();
  page += "q 60 60 475 180 re W n /Soft sh Q\n";
  return page + fill({"", 1, 1, 1}) + text("Bold", 20, {80, 140}, "White on soft colours");
}

std::string shading() {
  constexpr const char* kPart = "<< /FunctionType 2 /Domain [0 1] /N 1 /C0 [%s] /C1 [%s] >>";
  const auto part = [](const char* from, const char* to) {
    return format(kPart, from, to);  // NOLINT: the form is ours
  };
  return "<< /ShadingType 2 /ColorSpace /DeviceRGB /Coords [60 60 535 240] /Extend [true true]"
         " /Function << /FunctionType 3 /Domain [0 1] /Bounds [0.3 0.65] /Encode [0 1 0 1 0 1]"
         " /Functions [" +
         part("0.1 0.1 0.15", "0.45 0.4 0.5") + part("0.45 0.4 0.5", "0.9 0.35 0.2") +
         part("0.9 0.35 0.2", "1 0.95 0.8") + "] >> >>";
}

std::string font(const char* name) {
  return format("<< /Type /Font /Subtype /Type1 /BaseFont /%s >>", name);
}

// Numbered objects, and where each begins.
std::string pdfOf(const std::vector<std::string>& objects) {
  std::string pdf = "%PDF-1.4\n";
  std::string table;
  for (size_t i = 0; i < objects.size(); ++i) {
    table += format("%010zu 00000 n \n", pdf.size());
    pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const size_t start = pdf.size();
  const std::string count = std::to_string(objects.size() + 1);
  pdf += "xref\n0 " + count + "\n0000000000 65535 f \n" + table;
  return pdf + "trailer\n<< /Size " + count + " /Root 1 0 R >>\nstartxref\n" +
         std::to_string(start) + "\n%%EOF\n";
}

}  // namespace

std::vector<uint8_t> testPage() {
  const std::string page = content();
  const std::string pdf = pdfOf(
      {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>", kPage,
       "<< /Length " + std::to_string(page.size()) + " >>\nstream\n" + page + "endstream",
       font("Helvetica"), font("Helvetica-Bold"), shading()});
  return {pdf.begin(), pdf.end()};
}

}  // namespace velka::serve
