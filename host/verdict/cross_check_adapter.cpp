#include "host/verdict/cross_check_adapter.h"

#include <utility>
#include <variant>

namespace trackedcam::host {
namespace {

crosscheck::TrackerPose PoseAt(const std::array<double, 15>& row, std::size_t begin) {
  return {{row[begin], row[begin + 1], row[begin + 2]},
          {row[begin + 3], row[begin + 4], row[begin + 5], row[begin + 6]}};
}

crosscheck::TrackerPose PoseOfRow(const TrackerPose& pose) {
  return {{pose[0], pose[1], pose[2]}, {pose[3], pose[4], pose[5], pose[6]}};
}

crosscheck::Photograph PhotographOf(const Photograph& photograph) {
  const RawData& raw = *photograph.raw;
  crosscheck::Photograph observed = {
      photograph.path, PoseAt(raw.row, 1), PoseAt(raw.row, 8), raw.row[0], {}};
  for (const auto& corner : raw.corners) {
    observed.corners.emplace_back(corner[0], corner[1]);
  }
  return observed;
}

Eigen::Matrix4d TransformOf(const std::vector<double>& rowByRow) {
  return Eigen::Map<const Eigen::Matrix<double, 4, 4, Eigen::RowMajor>>(rowByRow.data());
}

// Most kinds name no photograph and stay as they are.
struct ToHost {
  const crosscheck::CrossCheck& crossCheck;
  const std::vector<std::string>& photographs;
  Finding& finding;

  template <class Kind>
  void operator()(const Kind& kind) const {
    finding.kind = kind;
  }

  void operator()(const crosscheck::TrackerMoved& moved) const {
    finding.kind = moved;
    finding.photographs = {photographs.at(moved.before)};
  }

  void operator()(const crosscheck::TrackerLoose& loose) const {
    finding.kind = loose;
    for (const std::size_t index : loose.photographs) {
      finding.photographs.push_back(photographs.at(index));
    }
  }

  void operator()(const crosscheck::BadPhotographs& bad) const {
    BadPhotographs kind = {bad.share, {}, crossCheck.used >= kLeastPhotographs};
    for (const std::size_t index : bad.photographs) {
      const crosscheck::PerPhotograph& photograph = crossCheck.perPhotograph.at(index);
      kind.disagreements.push_back(
          {photograph.mm, photograph.degrees, photograph.whyLeftOut,
           photograph.fitsTrackersOf ? photographs.at(*photograph.fitsTrackersOf) : ""});
      finding.photographs.push_back(photographs.at(index));
    }
    finding.kind = std::move(kind);
  }
};

}  // namespace

std::optional<crosscheck::Observations> ObservationsOf(const LibraryRun& run,
                                                       const Inputs& inputs) {
  const RunRecord& record = run.record;
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
  observations.quaternionAxes = QuaternionAxes(inputs.trackerFrame);
  observations.mounting = inputs.mounting;
  observations.goodEnough = inputs.goodEnough;
  observations.atMetres = inputs.atMetres;
  observations.scaleUncertainty = inputs.scaleUncertainty;
  // As in the log, so that a log gives the same; a log that is cut short may lack it.
  const std::vector<double>& transform =
      record.transformCamTc.size() == 16 ? record.transformCamTc : run.outputs.transformCamTc;
  if (transform.size() == 16) {
    observations.library = TransformOf(transform);
  }
  return observations;
}

crosscheck::Photograph PhotographOf(const DataRow& row,
                                    const std::vector<Eigen::Vector2d>& corners) {
  const std::vector<std::string_view> fields = SplitFields(row.text);
  const std::array<TrackerPose, 2> poses = PosesIn(fields);
  return {row.photograph, PoseOfRow(poses[0]), PoseOfRow(poses[1]), NumberIn(fields.front()),
          corners};
}

std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const std::vector<std::string>& photographs) {
  std::vector<Finding> findings;
  for (const crosscheck::Finding& found : crossCheck.findings) {
    Finding finding;
    finding.severity = found.severity;
    std::visit(ToHost{crossCheck, photographs, finding}, found.kind);
    findings.push_back(std::move(finding));
  }
  return findings;
}

}  // namespace trackedcam::host
