// SPDX-License-Identifier: MIT
//
// The ratios as a plot in SVG: for each function a dot at its median, a bar between its quartiles
// and a mark at what is allowed.
#include <algorithm>
#include <fstream>
#include <iomanip>
#include <string>

#include "results.h"

namespace zephlane::bench {

namespace {

constexpr double kLowest = 0.7;
constexpr double kHighest = 1.3;
constexpr int kPlotLeft = 290;
constexpr int kPlotWidth = 520;
constexpr int kWidth = kPlotLeft + kPlotWidth + 70;
constexpr int kTop = 56;
constexpr int kRowHeight = 18;
constexpr int kFamilyHeight = 26;

double X(double ratio) {
  const double share = (std::clamp(ratio, kLowest, kHighest) - kLowest) / (kHighest - kLowest);
  return kPlotLeft + share * kPlotWidth;
}

int HeightOf(const Results& results) {
  int height = kTop + 20;
  std::string family;
  for (const PairResult& pair : results.pairs) {
    height += kRowHeight + (pair.family != family ? kFamilyHeight : 0);
    family = pair.family;
  }
  return height;
}

void WriteLine(std::ostream& out, double x1, double y1, double x2, double y2,
               const std::string& style) {
  out << "<line x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2 << "\" "
      << style << "/>\n";
}

void WriteText(std::ostream& out, double x, double y, const std::string& text,
               const std::string& style = "") {
  out << "<text x=\"" << x << "\" y=\"" << y << "\" " << style << ">" << text << "</text>\n";
}

void WriteHead(std::ostream& out, int height) {
  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth << "\" height=\"" << height
      << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
      << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  WriteText(out, 10, 20, "Time of the library / time of raw hiredis sending the same commands",
            "font-size=\"14\" font-weight=\"bold\"");
  WriteText(out, 10, 38, "dot: median, bar: quartiles, red mark: allowed", "fill=\"#555\"");
  for (int percent = 70; percent <= 130; percent += 10) {
    const double x = X(percent / 100.0);
    WriteLine(out, x, kTop, x, height - 10, percent == 100 ? "stroke=\"#888\"" : "stroke=\"#ddd\"");
    out << "<text x=\"" << x << "\" y=\"" << kTop - 4 << "\" text-anchor=\"middle\">"
        << percent / 100.0 << "</text>\n";
  }
}

void WriteRow(std::ostream& out, const PairResult& pair, int y) {
  const double middle = y - 4;
  WriteText(out, kPlotLeft - 10, y, pair.function, "text-anchor=\"end\"");
  WriteLine(out, X(Quantile(pair.ratios, 0.25)), middle, X(Quantile(pair.ratios, 0.75)), middle,
            "stroke=\"#7aa6d6\" stroke-width=\"6\"");
  WriteLine(out, X(pair.allowed), middle - 6, X(pair.allowed), middle + 6,
            "stroke=\"#c33\" stroke-width=\"2\"");
  out << "<circle cx=\"" << X(pair.Ratio()) << "\" cy=\"" << middle << "\" r=\"4\" fill=\""
      << (pair.IsWithin() ? "#1f4e79" : "#c33") << "\"/>\n"
      << "<text x=\"" << kPlotLeft + kPlotWidth + 12 << "\" y=\"" << y << "\">" << std::fixed
      << std::setprecision(3) << pair.Ratio() << std::defaultfloat << "</text>\n";
}

}  // namespace

bool WritePlot(const Results& results, const std::string& path) {
  std::ofstream out(path);
  WriteHead(out, HeightOf(results));
  int y = kTop;
  std::string family;
  for (const PairResult& pair : results.pairs) {
    if (pair.family != family) {
      y += kFamilyHeight;
      WriteText(out, 10, y, pair.family, "font-weight=\"bold\"");
      family = pair.family;
    }
    y += kRowHeight;
    WriteRow(out, pair, y);
  }
  out << "</svg>\n";
  return out.good();
}

}  // namespace zephlane::bench
