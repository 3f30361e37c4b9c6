#include "host/motion_blur.h"

#include <cstddef>
#include <mutex>
#include <vector>

#include "host/parallel.h"
#include "host/photograph_pixels.h"

namespace trackedcam::host {

void MeasureMotionBlur(const Report& report, crosscheck::Observations& observations) {
  const bool isFromLog = report.inputs.data.empty();
  if (isFromLog) {
    return;
  }
  std::vector<const PhotographEntry*> withBoard;  // in the order of the observations
  for (const PhotographEntry& entry : report.photographs) {
    if (entry.inRun && report.run.record.photographs.at(*entry.inRun).raw) {
      withBoard.push_back(&entry);
    }
  }
  std::mutex large;
  ForEachInParallel(withBoard.size(), [&](std::size_t i) {
    if (const auto sharpness = SharpnessOf(*withBoard[i], report, large)) {
      observations.photographs.at(i).edgeWidths = sharpness->byDirection;
    }
  });
}

}  // namespace trackedcam::host
