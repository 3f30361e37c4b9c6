#include "host/photograph_pixels.h"

#include <array>
#include <vector>

#include "host/input/image_header.h"
#include "host/input/photograph_file.h"

namespace trackedcam::host {

std::filesystem::path FileOf(const PhotographEntry& entry, const Report& report) {
  try {
    return report.inputs.workingFolder / std::filesystem::u8path(entry.name);
  } catch (const std::exception&) {
    return {};
  }
}

std::optional<Sharpness> SharpnessOf(const PhotographEntry& entry, const Report& report,
                                     std::mutex& large) {
  std::optional<Sharpness>& known = report.sharpness->at(entry.index);
  if (!known) {
    const RunRecord& record = report.run.record;
    const auto header = ReadPhotographHeader(FileOf(entry, report));
    const auto alone = header && IsLarge(*header) ? std::unique_lock<std::mutex>(large)
                                                  : std::unique_lock<std::mutex>();
    const auto& raw = record.photographs.at(*entry.inRun).raw;
    const std::vector<std::array<double, 2>> none;
    known = MeasureSharpness(FileOf(entry, report), record.board ? record.board->columns : 0,
                             raw ? raw->corners : none);
  }
  return known;
}

}  // namespace trackedcam::host
