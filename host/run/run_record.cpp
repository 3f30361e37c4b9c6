#include "host/run/run_record.h"

#include <algorithm>

namespace trackedcam::host {

const char* Describe(DropReason reason) {
  switch (reason) {
    case DropReason::kNotLoaded:
      return "missing or not an image";
    case DropReason::kBoardNotFound:
      return "board not found";
    case DropReason::kOutlier:
      return "outlier";
  }
  return "";
}

CalibrationOutputs OutputsOf(const RunRecord& record) {
  CalibrationOutputs outputs;
  if (const auto& lens = record.lens) {
    outputs.imageSize = {lens->width, lens->height};
    outputs.normFocal = {lens->fx / lens->width, lens->fy / lens->height};
    outputs.normCenter = {lens->cx / lens->width, lens->cy / lens->height};
    outputs.distortion = {lens->k1, lens->k2, 0, 0, 0};
    outputs.fieldOfView = {lens->horizontalFieldOfView, lens->verticalFieldOfView};
    outputs.focalLengthMm = {lens->focalLengthMm};
  }
  outputs.transformCamTc = record.transformCamTc;
  return outputs;
}

std::vector<std::string> UsedPhotographs(const RunRecord& record) {
  std::vector<std::string> used;
  for (const Photograph& photograph : record.photographs) {
    if (!photograph.dropped) {
      used.push_back(photograph.path);
    }
  }
  return used;
}

bool IsBoardNowhere(const RunRecord& record) {
  const auto lacksBoard = [](const Photograph& photograph) {
    return photograph.dropped == DropReason::kBoardNotFound;
  };
  return UsedPhotographs(record).empty() &&
         std::any_of(record.photographs.begin(), record.photographs.end(), lacksBoard);
}

}  // namespace trackedcam::host
