#include "crosscheck/kit/later_shoot.h"

#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/shoot_flaws.h"
#include "simulator/random.h"
#include "simulator/shoot.h"

namespace trackedcam::test {

crosscheck::Pose DrawMove(std::uint64_t seed, double mm, double degrees) {
  simulator::Random random(seed, simulator::Draw::kSeat);
  return random.Displacement(degrees * crosscheck::kDegree, 1e-3 * mm);
}

std::vector<crosscheck::Photograph> LaterPhotographs(const simulator::ShootOptions& options,
                                                     double cornerNoisePixels,
                                                     const Between& between) {
  // Another draw of everything, but for what both shoots share.
  simulator::ShootOptions later = options;
  later.seed = options.seed + 500000 + between.draw;
  later.photographs = between.later;
  later.outliers = 0;
  later.trackerNoiseMm *= between.noiseFactor;
  later.trackerNoiseDegrees *= between.noiseFactor;
  simulator::Shoot simulated = simulator::SimulateShoot(later);
  if (between.turning < 1) {
    TurnLess(simulated, between.turning);
  }
  const simulator::Shoot before = simulator::SimulateShoot(options);
  simulator::Lens lens = before.lens;
  if (between.lens) {
    between.lens(lens);
  }
  const std::vector<Eigen::Vector3d> points = options.chart.Corners();
  std::vector<crosscheck::Photograph> photographs;
  simulator::Random random(later.seed, simulator::Draw::kPicture);
  for (const simulator::Photograph& seen : simulated.photographs) {
    crosscheck::Photograph photograph;
    photograph.name = seen.path;
    // The same chart in front of the same camera: the later shoot's trackers sit elsewhere.
    const crosscheck::Pose noiseOfCamera = seen.Transform_Base_Tc.inverse() * seen.trackedTc;
    const crosscheck::Pose noiseOfChart = seen.Transform_Base_Tr.inverse() * seen.trackedTr;
    const crosscheck::Pose Transform_Base_Tc = seen.Transform_Base_Tc;
    const crosscheck::Pose Transform_Base_Tr =
        Transform_Base_Tc * before.Transform_Cam_Tc.inverse() * seen.Transform_Cam_Chart *
        before.trueMounting.Transform().inverse();
    photograph.camera = Reported(Transform_Base_Tc * noiseOfCamera);
    photograph.chart = Reported(Transform_Base_Tr * noiseOfChart);
    Displace(photograph.camera, between.cameraMove);
    Displace(photograph.chart, between.chartMove);
    for (const Eigen::Vector3d& point : points) {
      photograph.corners.push_back(lens.Project(seen.Transform_Cam_Chart * point) +
                                   cornerNoisePixels * random.NormalVector().head<2>());
    }
    photographs.push_back(photograph);
  }
  return photographs;
}

}  // namespace trackedcam::test
