#include "app/words/summary.h"

#include <algorithm>

#include "app/words/cross_check_words.h"
#include "app/words/lens_table.h"
#include "app/words/mounting_words.h"
#include "app/words/table_row.h"
#include "host/result/transform_difference.h"
#include "host/run/library_data.h"
#include "host/text/number_text.h"
#include "host/verdict/limits.h"
#include "host/verdict/verdict.h"

namespace trackedcam::app {
namespace {

using host::CalibrationOutputs;
using host::DropReason;
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

// Each with the limits that hold for an image of this height.
void PrintErrors(std::ostream& out, const LibraryRun& run) {
  const auto print = [&](const char* label, std::optional<double> figure,
                         const std::optional<host::Limit>& limit, double scale) {
    if (!figure) {
      return;
    }
    std::vector<std::string> figures = {Fixed(*figure * scale, 2)};
    if (limit) {
      figures.push_back(limit->doubt ? Fixed(*limit->doubt * scale, 2) : "");
      figures.push_back(Fixed(limit->failure * scale, 2));
    }
    PrintRow(out, label, figures);
  };
  const RunRecord& record = run.record;
  const host::Limits limits = host::LimitsOf(run.outputs);
  out << "\nErrors\n";
  PrintRow(out, "", {"found", "doubt above", "fails above"});
  print("of the lens alone, px", record.lensError, limits.lensErrorPixels, 1);
  print("reprojection, mean, px", record.reprojectionError, limits.reprojectionErrorPixels, 1);
  print("spread of the translation, mm", record.spread, limits.translationSpreadMetres,
        kMillimetresPerMetre);
}

std::size_t Count(const RunRecord& record, DropReason reason) {
  return static_cast<std::size_t>(
      std::count_if(record.photographs.begin(), record.photographs.end(),
                    [&](const Photograph& photograph) { return photograph.dropped == reason; }));
}

// The filter's share is no list of bad photographs: which are bad the cross-check says.
void PrintPhotographs(std::ostream& out, const RunRecord& record) {
  out << "\nPhotographs: " << host::UsedPhotographs(record).size() << " of "
      << record.photographs.size() << " used";
  if (const std::size_t outliers = Count(record, DropReason::kOutlier)) {
    out << "; " << outliers << " left out by the filter (about half is normal)";
  }
  out << '\n';
  for (const Photograph& photograph : record.photographs) {
    if (photograph.dropped && photograph.dropped != DropReason::kOutlier) {
      out << "  dropped " << photograph.path << " (" << host::Describe(*photograph.dropped)
          << ")\n";
    }
  }
}

void PrintFindings(std::ostream& out, const std::vector<host::Finding>& findings) {
  if (findings.empty()) {
    return;
  }
  out << "\nFindings\n";
  for (const host::Finding& finding : findings) {
    out << "  " << Name(finding.severity) << ": " << finding.text << '\n';
    if (!finding.advice.empty()) {
      out << "    " << finding.advice << '\n';
    }
  }
}

void PrintVerdict(std::ostream& out, const Report& report) {
  const LibraryRun& run = report.run;
  const host::Verdict& verdict = report.verdict;
  out << '\n'
      << (host::IsUsable(run) || !run.code ? ""
                                           : "Failed, code " + std::to_string(*run.code) + ": ")
      << verdict.words << "\nNext: " << verdict.advice << '\n';
  for (const std::string& command : verdict.commands) {
    out << "      " << command << '\n';
  }
}

void PrintFiles(std::ostream& out, const Report& report, const std::filesystem::path& page) {
  const LibraryRun& run = report.run;
  if (!page.empty()) {
    out << "Report: " << page.u8string() << '\n';
  }
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

void PrintRun(std::ostream& out, const Report& report, const CalibrationOutputs* truth) {
  const LibraryRun& run = report.run;
  if (!run.outputs.transformCamTc.empty()) {
    PrintTransform(out, run.outputs.transformCamTc, truth);
  }
  if (run.record.lensError) {
    PrintErrors(out, run);
  }
  if (!run.record.photographs.empty()) {
    PrintPhotographs(out, run.record);
  }
  if (report.crossCheck) {
    PrintCrossCheck(out, report, truth);
    PrintMountings(out, report);
  }
  PrintFindings(out, report.findings);
}

// In short: the figures that the second run replaces.
void PrintFirstRun(std::ostream& out, const Report& first, const CalibrationOutputs* truth) {
  out << "First run, "
      << (first.mountingIsStated ? "with the mounting stated" : "without a mounting") << '\n';
  if (first.mountingIsStated && !first.run.outputs.transformCamTc.empty()) {
    PrintRun(out, first, truth);
  } else if (first.crossCheck) {
    PrintCrossCheck(out, first, truth);
  }
  out << "\nSecond run, with the mounting found\n\n";
}

}  // namespace

void PrintSummary(std::ostream& out, const Report& report, const CalibrationOutputs* truth,
                  const std::filesystem::path& page) {
  if (report.firstRun) {
    PrintFirstRun(out, *report.firstRun, truth);
  }
  if (!report.run.outputs.focalLengthMm.empty()) {
    PrintLens(out, report.run.outputs, truth);
  }
  PrintRun(out, report, truth);
  const bool isOfALog = report.inputs.data.empty();  // there is no second run then
  if (report.crossCheck && (report.firstRun || isOfALog)) {
    PrintMountingFound(out, report);
  }
  PrintVerdict(out, report);
  PrintFiles(out, report, page);
}

}  // namespace trackedcam::app
