// Random pose lists that close the loop Cam <- Chart <- Tr <- Base <- Tc exactly.

#pragma once

#include <random>

#include "support/random_transform.h"

namespace trackedcam::test {

struct PoseLists {
  Transform Transform_Cam_Tc;
  Transform Transform_Chart_Tr;
  TransformList Transform_Cam_Chart_all;
  TransformList Transform_Tr_Base_all;
  TransformList Transform_Base_Tc_all;
};

inline PoseLists ConsistentPoseLists(int photographs, unsigned seed) {
  std::mt19937 random(seed);
  PoseLists poses;
  poses.Transform_Cam_Tc = RandomTransform(random);
  poses.Transform_Chart_Tr = RandomTransform(random);
  for (int i = 0; i < photographs; ++i) {
    const Transform Transform_Cam_Chart = RandomTransform(random);
    const Transform Transform_Tr_Base = RandomTransform(random);
    poses.Transform_Cam_Chart_all.push_back(Transform_Cam_Chart);
    poses.Transform_Tr_Base_all.push_back(Transform_Tr_Base);
    poses.Transform_Base_Tc_all.push_back(
        (Transform_Cam_Chart * poses.Transform_Chart_Tr * Transform_Tr_Base).inverse() *
        poses.Transform_Cam_Tc);
  }
  return poses;
}

}  // namespace trackedcam::test
