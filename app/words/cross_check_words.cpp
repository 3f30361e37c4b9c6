#include "app/words/cross_check_words.h"

#include "app/words/table_row.h"
#include "host/result/transform_difference.h"
#include "host/text/number_text.h"
#include "host/verdict/cross_check_findings.h"

namespace trackedcam::app {
namespace {

using crosscheck::CrossCheck;
using host::Fixed;

constexpr double kCertain = 0.001;
constexpr double kPossible = 0.05;

std::vector<std::string> Off(double mm, double degrees) {
  return {Fixed(mm, 1) + " mm", Fixed(degrees, 2) + " deg"};
}

// How likely such a distance is by chance, in a word.
const char* Surety(double p) {
  return p < kCertain ? "certain" : p < kPossible ? "likely" : "by chance";
}

void PrintOffset(std::ostream& out, const char* label, const crosscheck::Offset& offset) {
  auto figures = Off(offset.offMm, offset.offDegrees);
  figures.emplace_back(Surety(offset.p));
  PrintRow(out, label, figures);
}

// The largest of the three axes, as a half-width of 95 %.
std::vector<std::string> Known(const crosscheck::StandardError& error, double t95) {
  return Off(t95 * error.shiftMm.maxCoeff(), t95 * error.turnDegrees.maxCoeff());
}

void PrintBad(std::ostream& out, const host::Report& report) {
  for (const host::Finding& finding : report.findings) {
    if (finding.id == "badPhotographs") {
      out << "  " << finding.text << '\n';
    }
  }
}

std::vector<double> RowByRow(const Eigen::Matrix4d& transform) {
  const Eigen::Matrix<double, 4, 4, Eigen::RowMajor> rows = transform;
  return {rows.data(), rows.data() + rows.size()};
}

}  // namespace

void PrintCrossCheck(std::ostream& out, const host::Report& report,
                     const host::CalibrationOutputs* truth) {
  const CrossCheck& check = *report.crossCheck;
  out << "\nCross-check: mounting and transform solved together, " << check.used << " of "
      << check.photographs << " photographs\n";
  if (!check.solved) {
    out << "  no solution\n";
    return;
  }
  auto known = Known(check.standardErrorCamTc, check.t95);
  known.emplace_back("(95 %)");
  PrintRow(out, "the transform is known to", known);
  if (check.library) {
    PrintOffset(out, "the result above is off by", *check.library);
  }
  if (check.nominalMounting) {
    PrintOffset(out, "the mounting used is off by", *check.nominalMounting);
  }
  if (truth != nullptr) {
    const auto off = host::Difference(RowByRow(check.Transform_Cam_Tc), truth->transformCamTc);
    PrintRow(out, "its own transform, off the truth",
             {Fixed(off.millimetres, 2) + " mm", Fixed(off.degrees, 3) + " deg"});
  }
  PrintBad(out, report);
}

}  // namespace trackedcam::app
