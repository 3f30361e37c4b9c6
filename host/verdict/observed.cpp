#include "host/verdict/observed.h"

namespace trackedcam::host {
namespace {

crosscheck::TrackerPose PoseAt(const std::array<double, 15>& row, std::size_t begin) {
  return {{row[begin], row[begin + 1], row[begin + 2]},
          {row[begin + 3], row[begin + 4], row[begin + 5], row[begin + 6]}};
}

crosscheck::Photograph PhotographOf(const Photograph& photograph) {
  const RawData& raw = *photograph.raw;
  crosscheck::Photograph observed = {photograph.path, PoseAt(raw.row, 1), PoseAt(raw.row, 8), {}};
  for (const auto& corner : raw.corners) {
    observed.corners.emplace_back(corner[0], corner[1]);
  }
  return observed;
}

Eigen::Matrix4d TransformOf(const std::vector<double>& rowByRow) {
  return Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>>(rowByRow.data());
}

}  // namespace

std::optional<crosscheck::Observations> ObservationsOf(
    const RunRecord& record, const std::optional<crosscheck::Mounting>& mounting) {
  if (!record.board || !record.lens) {
    return std::nullopt;
  }
  crosscheck::Observations observations;
  observations.boardColumns = record.board->columns;
  observations.boardRows = record.board->rows;
  observations.square = record.board->square;
  const LensRecord& lens = *record.lens;
  observations.lens = {static_cast<int>(lens.width),
                       static_cast<int>(lens.height),
                       lens.fx,
                       lens.fy,
                       lens.cx,
                       lens.cy,
                       lens.k1,
                       lens.k2};
  for (const Photograph& photograph : record.photographs) {
    if (photograph.raw) {
      observations.photographs.push_back(PhotographOf(photograph));
    }
  }
  observations.invertTrackerQuaternions = record.invertsQuaternions;
  observations.mounting = mounting;
  if (record.transformCamTc.size() == 16) {
    observations.library = TransformOf(record.transformCamTc);
  }
  return observations;
}

}  // namespace trackedcam::host
