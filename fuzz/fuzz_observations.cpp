// The input of the cross-check: any numbers give an answer or an error.

#include <stdexcept>

#include "crosscheck/cross_check.h"
#include "fuzz/fuzz.h"

namespace {

using namespace trackedcam;
using crosscheck::Observations;

crosscheck::TrackerPose Pose(fuzz::Bytes& bytes) {
  crosscheck::TrackerPose pose;
  for (int axis = 0; axis < 3; ++axis) {
    pose.position[axis] = bytes.Number();
  }
  for (int part = 0; part < 4; ++part) {
    pose.quaternionWxyz[part] = bytes.Number();
  }
  return pose;
}

// Corners in a regular grid, of arbitrary place and shape.
void AddCorners(fuzz::Bytes& bytes, const Observations& observations,
                crosscheck::Photograph& photograph) {
  const Eigen::Vector2d origin(320 + bytes.Number(), 180 + bytes.Number());
  const Eigen::Vector2d right(20 + bytes.Number(), bytes.Number());
  const Eigen::Vector2d down(bytes.Number(), 20 + bytes.Number());
  for (int row = 0; row < observations.boardRows; ++row) {
    for (int column = 0; column < observations.boardColumns; ++column) {
      photograph.corners.push_back(origin + column * right + row * down);
    }
  }
}

Observations Make(fuzz::Bytes& bytes) {
  Observations observations;
  observations.boardColumns = bytes.Take<std::uint8_t>() % 6;
  observations.boardRows = bytes.Take<std::uint8_t>() % 6;
  observations.square = bytes.Number();
  observations.lens = {640,
                       360,
                       600 + bytes.Number(),
                       600 + bytes.Number(),
                       320 + bytes.Number(),
                       180 + bytes.Number(),
                       bytes.Number(),
                       bytes.Number()};
  observations.invertTrackerQuaternions = bytes.Take<std::uint8_t>() % 2 == 1;
  if (bytes.Take<std::uint8_t>() % 2 == 1) {
    observations.mounting = {{bytes.Number(), bytes.Number(), bytes.Number()},
                             {bytes.Number(), bytes.Number(), bytes.Number()}};
    Eigen::Matrix4d library = Eigen::Matrix4d::Identity();
    library(0, 3) = bytes.Number();
    library(1, 1) = bytes.Number();
    observations.library = library;
  }
  constexpr int kMost = 14;
  for (int i = 0; i < kMost && !bytes.IsEmpty(); ++i) {
    crosscheck::Photograph photograph;
    photograph.name = std::to_string(i);
    photograph.camera = Pose(bytes);
    photograph.chart = Pose(bytes);
    AddCorners(bytes, observations, photograph);
    if (bytes.Take<std::uint8_t>() == 1 && !photograph.corners.empty()) {
      photograph.corners.pop_back();
    }
    observations.photographs.push_back(photograph);
  }
  return observations;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const Observations observations = Make(bytes);
  try {
    const crosscheck::CrossCheck check = crosscheck::Check(observations);
    fuzz::Require(check.perPhotograph.size() == observations.photographs.size(),
                  "number of photographs");
  } catch (const std::invalid_argument&) {
  }
  return 0;
}
