#include "host/lost_photographs.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <mutex>
#include <optional>
#include <utility>

#include "host/input/edge_width.h"
#include "host/input/image_header.h"
#include "host/input/photograph_file.h"
#include "host/parallel.h"
#include "host/photograph_pixels.h"

namespace trackedcam::host {
namespace {

// Of a simulated shoot it is 0.02 to 0.1 pixels.
constexpr double kUnusualLensError = 0.25;  // pixels, at 720 rows
constexpr double kRows = 720;               // in which the library searches

bool IsLost(const PhotographEntry& entry) {
  return entry.state == PhotographState::kBoardNotFound ||
         entry.state == PhotographState::kNotLoaded;
}

// Without a lens, or with one that fits badly.
bool IsLensUncertain(const Report& report) {
  const RunRecord& record = report.run.record;
  const double rows = record.lens ? record.lens->height : kRows;
  return !record.lens || !record.lensError ||
         *record.lensError > kUnusualLensError * std::max(rows, kRows) / kRows;
}

// What the pixels of a photograph say, if they are asked.
struct Looked {
  bool isIncomplete = false;
  std::optional<Sharpness> sharpness;
};

// On all processors: each photograph is decoded once.
std::vector<Looked> LookAt(const PhotographList& list, const Report& report, bool isLensUncertain) {
  std::vector<Looked> all(list.size());
  std::mutex large;
  ForEachInParallel(list.size(), [&](std::size_t i) {
    const PhotographEntry& entry = list[i];
    if (!entry.inRun || !(IsLost(entry) || isLensUncertain)) {
      return;
    }
    all[i].isIncomplete = IsLost(entry) && ReadPhotographHeader(FileOf(entry, report)) &&
                          !IsCompleteImage(FileOf(entry, report));
    if (all[i].isIncomplete || isLensUncertain) {
      all[i].sharpness = SharpnessOf(entry, report, large);
    }
  });
  return all;
}

void AddCutShort(std::vector<std::string> names, std::size_t all, std::vector<Finding>& findings) {
  if (!names.empty()) {
    const Severity severity = SeverityOfLeftOut(names.size(), all);
    const PhotographFault fault = {PhotographFault::Kind::kCutShort, names.size(), all};
    names.resize(std::min(names.size(), kMostNamedPhotographs));
    findings.push_back({severity, fault, std::move(names)});
  }
}

void AddUnsharp(std::vector<std::pair<double, std::string>> unsharp, const Report& report,
                std::vector<Finding>& findings) {
  if (unsharp.empty()) {
    return;
  }
  std::stable_sort(unsharp.begin(), unsharp.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  UnsharpPhotographs kind = {{}, unsharp.size(), report.photographs.size()};
  Finding finding;
  finding.severity = IsUsable(report.run) ? Severity::kWarning : Severity::kError;
  for (const auto& [width, name] : unsharp) {
    if (finding.photographs.size() < kMostNamedPhotographs) {
      finding.photographs.push_back(name);
      kind.edgeWidths.push_back(width);
    }
  }
  finding.kind = std::move(kind);
  findings.push_back(std::move(finding));
}

}  // namespace

std::vector<Finding> ExplainLostPhotographs(Report& report) {
  std::vector<Finding> findings;
  PhotographList& list = report.photographs;
  const bool isFromLog = report.inputs.data.empty();  // the photographs may be elsewhere
  if (isFromLog || std::none_of(list.begin(), list.end(), IsLost)) {
    return findings;
  }
  const bool isLensUncertain = IsLensUncertain(report);
  std::vector<std::string> cutShort;
  std::vector<std::pair<double, std::string>> unsharp;
  const std::vector<Looked> looked = LookAt(list, report, isLensUncertain);
  for (std::size_t i = 0; i < list.size(); ++i) {
    PhotographEntry& entry = list[i];
    const auto& [isIncomplete, sharpness] = looked[i];
    if (isIncomplete && (!sharpness || sharpness->repeatsLastRow)) {
      entry.reason = "the file is cut short";
      cutShort.push_back(entry.name);
    } else if (isLensUncertain && sharpness && IsUnsharp(*sharpness)) {
      unsharp.emplace_back(*sharpness->edgeWidthPixels, entry.name);
      entry.reason = IsLost(entry) ? "board not found: not sharp" : entry.reason;
    }
  }
  AddUnsharp(std::move(unsharp), report, findings);
  AddCutShort(std::move(cutShort), list.size(), findings);
  return findings;
}

}  // namespace trackedcam::host
