#include "app/words/summary.h"

#include "app/words/lens_table.h"
#include "app/words/table_row.h"
#include "host/result/transform_difference.h"
#include "host/run/library_data.h"
#include "host/text/number_text.h"
#include "host/verdict/verdict.h"

namespace trackedcam::app {
namespace {

using host::CalibrationOutputs;
using host::Fixed;
using host::LibraryRun;
using host::Photograph;
using host::Report;
using host::RunRecord;

constexpr double kMillimetresPerMetre = 1000.0;

void PrintTransform(std::ostream& out, const std::vector<double>& transform,
                    const CalibrationOutputs* truth) {
  out << "\nTransform_Cam_Tc, from the camera's tracker to the camera\n";
  for (std::size_t row = 0; row < transform.size(); row += 4) {
    std::vector<std::string> figures;
    for (std::size_t i = row; i < row + 4; ++i) {
      figures.push_back(Fixed(transform.at(i), 6));
    }
    PrintRow(out, row == 0 ? "matrix, metres" : "", figures);
  }
  const auto millimetres = [&](std::size_t i) {
    return Fixed(transform.at(i) * kMillimetresPerMetre, 2);
  };
  PrintRow(out, "translation, mm", {millimetres(3), millimetres(7), millimetres(11)});
  if (truth != nullptr) {
    const auto difference = host::Difference(transform, truth->transformCamTc);
    PrintRow(out, "off the truth",
             {Fixed(difference.millimetres, 2) + " mm", Fixed(difference.degrees, 3) + " deg"});
  }
}

void PrintErrors(std::ostream& out, const RunRecord& record) {
  const auto print = [&](const char* label, std::optional<double> figure, double scale) {
    if (figure) {
      PrintRow(out, label, {Fixed(*figure * scale, 2)});
    }
  };
  out << "\nErrors\n";
  print("of the lens alone, px", record.lensError, 1);
  print("reprojection, mean, px", record.reprojectionError, 1);
  print("spread of the translation, mm", record.spread, kMillimetresPerMetre);
}

void PrintPhotographs(std::ostream& out, const RunRecord& record) {
  out << "\nPhotographs: " << host::UsedPhotographs(record).size() << " of "
      << record.photographs.size() << " used\n";
  for (const Photograph& photograph : record.photographs) {
    if (photograph.dropped) {
      out << "  dropped " << photograph.path << " (" << host::Describe(*photograph.dropped)
          << ")\n";
    }
  }
}

void PrintVerdict(std::ostream& out, const LibraryRun& run) {
  const host::Verdict verdict = host::VerdictOf(run);
  out << '\n'
      << (host::IsUsable(run) || !run.code ? ""
                                           : "Failed, code " + std::to_string(*run.code) + ": ")
      << verdict.words << "\nNext: " << verdict.advice << '\n';
}

void PrintFiles(std::ostream& out, const Report& report) {
  const LibraryRun& run = report.run;
  if (host::IsConverted(report.inputs.trackerFrame)) {
    out << "Tracker data: taken as poses in " << host::Describe(report.inputs.trackerFrame)
        << "; converted: " << (run.folder / host::kConvertedData).u8string() << '\n';
  }
  if (!run.log.empty()) {
    out << "Log: " << run.log.u8string() << '\n';
  }
  if (!run.images.empty()) {
    out << "Images: " << run.images.size() << ", such as " << run.images.front().u8string() << '\n';
  }
}

}  // namespace

void PrintSummary(std::ostream& out, const Report& report, const CalibrationOutputs* truth) {
  const LibraryRun& run = report.run;
  if (!run.outputs.focalLengthMm.empty()) {
    PrintLens(out, run.outputs, truth);
  }
  if (!run.outputs.transformCamTc.empty()) {
    PrintTransform(out, run.outputs.transformCamTc, truth);
  }
  if (run.record.lensError) {
    PrintErrors(out, run.record);
  }
  if (!run.record.photographs.empty()) {
    PrintPhotographs(out, run.record);
  }
  PrintVerdict(out, run);
  PrintFiles(out, report);
}

}  // namespace trackedcam::app
