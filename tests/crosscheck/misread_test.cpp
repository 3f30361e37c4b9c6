// Rows that were meant otherwise, and mountings that were stated in another way: each is named.

#include <cmath>

#include <gmock/gmock.h>

#include "crosscheck/cross_check.h"
#include "crosscheck/kit/known_shoot.h"
#include "crosscheck/kit/shoot_flaws.h"
#include "crosscheck/reported_poses.h"
#include "simulator/mounting.h"

namespace trackedcam::crosscheck {
namespace {

using Spoil = void (*)(Observations&);

void ForEachTracker(Observations& observations, void (*spoil)(TrackerPose&)) {
  for (Photograph& photograph : observations.photographs) {
    spoil(photograph.camera);
    spoil(photograph.chart);
  }
}

// What the rows hold, against what they are read as.
struct Misreading {
  const char* id;
  Spoil spoil;
};

const Misreading kMisreadings[] = {
    {"quaternionsInverted",
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) { t.quaternionWxyz.tail<3>() *= -1; });
     }},
    {"orderXyzw",
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) {
         const Eigen::Vector4d q = t.quaternionWxyz;
         t.quaternionWxyz = {q[1], q[2], q[3], q[0]};
       });
     }},
    {"trackersExchanged",
     [](Observations& o) {
       for (Photograph& photograph : o.photographs) {
         std::swap(photograph.camera, photograph.chart);
       }
     }},
    {"rowsEarly",
     [](Observations& o) {
       for (std::size_t i = 0; i + 1 < o.photographs.size(); ++i) {
         o.photographs[i].camera = o.photographs[i + 1].camera;
         o.photographs[i].chart = o.photographs[i + 1].chart;
       }
     }},
    {"rowsLate",  // a row holds what belongs to the photograph before
     [](Observations& o) {
       for (std::size_t i = o.photographs.size() - 1; i > 0; --i) {
         o.photographs[i].camera = o.photographs[i - 1].camera;
         o.photographs[i].chart = o.photographs[i - 1].chart;
       }
     }},
    {"millimetres",
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position *= 1000; }); }},
    {"centimetres",
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position *= 100; }); }},
    {"leftHanded",  // the mirror image in z
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) {
         t.position.z() *= -1;
         t.quaternionWxyz[1] *= -1;
         t.quaternionWxyz[2] *= -1;
       });
     }},
    {"mirroredX",
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position.x() *= -1; }); }},
    {"mirroredY",
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position.y() *= -1; }); }},
    {"mirroredZ",
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position.z() *= -1; }); }},
};

TEST(MisreadTest, EachReadingIsNamed) {
  for (const Misreading& misreading : kMisreadings) {
    for (std::uint64_t seed = 1; seed <= 2; ++seed) {
      SCOPED_TRACE(std::string(misreading.id) + ", seed " + std::to_string(seed));
      Observations observations = test::MakeShoot(test::FortyNoisy(seed), 0.05).observations;
      misreading.spoil(observations);
      const CrossCheck check = Check(observations);
      ASSERT_EQ(check.findings.size(), 1U);
      EXPECT_EQ(check.findings[0].id, FindingId::kReading);
      EXPECT_EQ(check.findings[0].severity, Severity::kError);
      EXPECT_EQ(check.findings[0].detail, misreading.id);
      EXPECT_GT(check.findings[0].Number("times"), 4);
    }
  }
}

// What is stated instead of the true mounting.
struct Misstatement {
  const char* id;
  Mounting (*state)(const Pose& truth, const Mounting& figures, const Observations& observations);
};

const Misstatement kMisstatements[] = {
    {"inverse", [](const Pose& truth, const Mounting&,
                   const Observations&) { return MountingOf(truth.inverse()); }},
    {"millimetres",
     [](const Pose&, const Mounting& figures, const Observations&) {
       Mounting stated = figures;
       for (double& metres : stated.translationMetres) {
         metres *= 1000;
       }
       return stated;
     }},
    {"centimetres",
     [](const Pose&, const Mounting& figures, const Observations&) {
       Mounting stated = figures;
       for (double& metres : stated.translationMetres) {
         metres *= 100;
       }
       return stated;
     }},
    {"angleSigns",
     [](const Pose&, const Mounting& figures, const Observations&) {
       Mounting stated = figures;
       stated.rotationDegrees[0] *= -1;
       stated.rotationDegrees[2] *= -1;
       return stated;
     }},
    {"angleOrder",  // the angles are meant for Rz * Ry * Rx
     [](const Pose& truth, const Mounting& figures, const Observations&) {
       const Eigen::Vector3d angles = truth.linear().eulerAngles(2, 1, 0) / simulator::Radians(1);
       Mounting stated = figures;
       stated.rotationDegrees = {angles[2], angles[1], angles[0]};
       return stated;
     }},
    {"reportedAxes",
     [](const Pose& truth, const Mounting&, const Observations&) {
       Eigen::Matrix3d fix;
       fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
       return MountingOf(Pose(fix.transpose()) * truth);
     }},
    {"boardTurned",
     [](const Pose& truth, const Mounting&, const Observations& o) {
       Pose halfTurn(Eigen::AngleAxisd(simulator::Radians(180), Eigen::Vector3d::UnitZ()));
       halfTurn.translation() << (o.boardColumns - 1) * o.square, (o.boardRows - 1) * o.square, 0;
       return MountingOf(truth * halfTurn);
     }},
};

TEST(MisreadTest, EachSlipOfTheMountingIsNamed) {
  for (const Misstatement& misstatement : kMisstatements) {
    for (std::uint64_t seed = 1; seed <= 2; ++seed) {
      SCOPED_TRACE(std::string(misstatement.id) + ", seed " + std::to_string(seed));
      test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(seed), 0.05);
      Observations& observations = shoot.observations;
      observations.mounting =
          misstatement.state(shoot.Transform_Tr_Chart, *observations.mounting, observations);
      observations.library = test::BelievingTheMounting(shoot).matrix();
      const CrossCheck check = Check(observations);
      ASSERT_TRUE(check.nominalMounting);
      EXPECT_EQ(check.nominalMounting->perhaps, misstatement.id);
      ASSERT_FALSE(check.findings.empty());
      EXPECT_EQ(check.findings[0].id, FindingId::kMountingOff);
      EXPECT_EQ(check.findings[0].detail, misstatement.id);
    }
  }
}

TEST(MisreadTest, AnErrorThatIsNoSlipHasNoName) {
  simulator::ShootOptions options = test::FortyNoisy(4);
  options.mountingErrorMm = 27;
  options.mountingErrorDegrees = 1;
  const CrossCheck check = Check(test::MakeShoot(options, 0.05).observations);
  ASSERT_TRUE(check.nominalMounting);
  EXPECT_EQ(check.nominalMounting->perhaps, std::nullopt);
}

}  // namespace
}  // namespace trackedcam::crosscheck
