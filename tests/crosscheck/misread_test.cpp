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
  RowReading reading;
  Spoil spoil;
};

const Misreading kMisreadings[] = {
    {RowReading::kQuaternionsInverted,
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) { t.quaternionWxyz.tail<3>() *= -1; });
     }},
    {RowReading::kOrderXyzw,
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) {
         const Eigen::Vector4d q = t.quaternionWxyz;
         t.quaternionWxyz = {q[1], q[2], q[3], q[0]};
       });
     }},
    {RowReading::kTrackersExchanged,
     [](Observations& o) {
       for (Photograph& photograph : o.photographs) {
         std::swap(photograph.camera, photograph.chart);
       }
     }},
    {RowReading::kRowsEarly,
     [](Observations& o) {
       for (std::size_t i = 0; i + 1 < o.photographs.size(); ++i) {
         o.photographs[i].camera = o.photographs[i + 1].camera;
         o.photographs[i].chart = o.photographs[i + 1].chart;
       }
     }},
    {RowReading::kRowsLate,  // a row holds what belongs to the photograph before
     [](Observations& o) {
       for (std::size_t i = o.photographs.size() - 1; i > 0; --i) {
         o.photographs[i].camera = o.photographs[i - 1].camera;
         o.photographs[i].chart = o.photographs[i - 1].chart;
       }
     }},
    {RowReading::kMillimetres,
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position *= 1000; }); }},
    {RowReading::kCentimetres,
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position *= 100; }); }},
    {RowReading::kLeftHanded,  // the mirror image in z
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) {
         t.position.z() *= -1;
         t.quaternionWxyz[1] *= -1;
         t.quaternionWxyz[2] *= -1;
       });
     }},
    {RowReading::kInches,
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position /= 0.0254; }); }},
    {RowReading::kEngineCentimetres,
     [](Observations& o) {
       ForEachTracker(o, [](TrackerPose& t) {
         t.position *= 100;
         t.position.z() *= -1;
         t.quaternionWxyz[1] *= -1;
         t.quaternionWxyz[2] *= -1;
       });
     }},
    {RowReading::kCameraInverted,
     [](Observations& o) {
       for (Photograph& photograph : o.photographs) {
         photograph.camera.quaternionWxyz.tail<3>() *= -1;
       }
     }},
    {RowReading::kChartInverted,
     [](Observations& o) {
       for (Photograph& photograph : o.photographs) {
         photograph.chart.quaternionWxyz.tail<3>() *= -1;
       }
     }},
    {RowReading::kCameraLate,
     [](Observations& o) {
       for (std::size_t i = o.photographs.size() - 1; i > 0; --i) {
         o.photographs[i].camera = o.photographs[i - 1].camera;
       }
     }},
    {RowReading::kChartLate,
     [](Observations& o) {
       for (std::size_t i = o.photographs.size() - 1; i > 0; --i) {
         o.photographs[i].chart = o.photographs[i - 1].chart;
       }
     }},
    {RowReading::kMirroredX,
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position.x() *= -1; }); }},
    {RowReading::kMirroredY,
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position.y() *= -1; }); }},
    {RowReading::kMirroredZ,
     [](Observations& o) { ForEachTracker(o, [](TrackerPose& t) { t.position.z() *= -1; }); }},
};

TEST(MisreadTest, EachReadingIsNamed) {
  for (const Misreading& misreading : kMisreadings) {
    for (std::uint64_t seed = 1; seed <= 2; ++seed) {
      SCOPED_TRACE(std::string(Name(misreading.reading)) + ", seed " + std::to_string(seed));
      Observations observations = test::MakeShoot(test::FortyNoisy(seed), 0.05).observations;
      misreading.spoil(observations);
      const CrossCheck check = Check(observations);
      ASSERT_EQ(check.findings.size(), 1U);
      EXPECT_EQ(check.findings[0].severity, Severity::kError);
      const auto* finding = std::get_if<MisreadRows>(&check.findings[0].kind);
      ASSERT_TRUE(finding);
      EXPECT_EQ(finding->reading, misreading.reading);
      EXPECT_GT(finding->times, 4);
    }
  }
}

// About one axis only, positions in millimetres may fit better than those in metres.
TEST(MisreadTest, NothingIsNamedOfAChartOnATurntable) {
  for (std::uint64_t seed = 1; seed <= 8; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    simulator::ShootOptions options = test::FortyNoisy(seed);
    options.turntable = true;
    const CrossCheck check = Check(test::MakeShoot(options, 0.05).observations);
    for (const Finding& finding : check.findings) {
      EXPECT_FALSE(std::holds_alternative<MisreadRows>(finding.kind));
      EXPECT_NE(finding.severity, Severity::kError) << Name(finding.kind);
    }
  }
}

// An engine's x, y, z are a permutation of the reported ones, with other signs: rows in the order
// x, y, z, w were taken as w, x, y, z before their axes were converted.
TEST(MisreadTest, TheOrderOfQuaternionsIsNamedInTheAxesOfAnEngine) {
  Eigen::Matrix3d axes;
  axes << 0, 1, 0, 0, 0, -1, -1, 0, 0;
  Observations observations = test::MakeShoot(test::FortyNoisy(3), 0.05).observations;
  observations.quaternionAxes = axes;
  for (Photograph& photograph : observations.photographs) {
    for (TrackerPose* tracker : {&photograph.camera, &photograph.chart}) {
      const Eigen::Vector3d inRow = axes.transpose() * tracker->quaternionWxyz.tail<3>();
      const double w = tracker->quaternionWxyz[0];
      tracker->quaternionWxyz[0] = inRow[0];
      tracker->quaternionWxyz.tail<3>() = axes * Eigen::Vector3d(inRow[1], inRow[2], w);
    }
  }
  const CrossCheck check = Check(observations);
  ASSERT_EQ(check.findings.size(), 1U);
  ASSERT_TRUE(std::holds_alternative<MisreadRows>(check.findings[0].kind));
  EXPECT_EQ(std::get<MisreadRows>(check.findings[0].kind).reading, RowReading::kOrderXyzw);
}

// What is stated instead of the true mounting.
struct Misstatement {
  MountingMistake mistake;
  Mounting (*state)(const Pose& truth, const Mounting& mounting, const Observations& observations);
};

const Misstatement kMisstatements[] = {
    {MountingMistake::kInverse, [](const Pose& truth, const Mounting&,
                                   const Observations&) { return MountingOf(truth.inverse()); }},
    {MountingMistake::kMillimetres,
     [](const Pose&, const Mounting& mounting, const Observations&) {
       Mounting stated = mounting;
       for (double& metres : stated.translationMetres) {
         metres *= 1000;
       }
       return stated;
     }},
    {MountingMistake::kCentimetres,
     [](const Pose&, const Mounting& mounting, const Observations&) {
       Mounting stated = mounting;
       for (double& metres : stated.translationMetres) {
         metres *= 100;
       }
       return stated;
     }},
    {MountingMistake::kAngleSigns,
     [](const Pose&, const Mounting& mounting, const Observations&) {
       Mounting stated = mounting;
       stated.rotationDegrees[0] *= -1;
       stated.rotationDegrees[2] *= -1;
       return stated;
     }},
    {MountingMistake::kAngleOrder,  // the angles are meant for Rz * Ry * Rx
     [](const Pose& truth, const Mounting& mounting, const Observations&) {
       const Eigen::Vector3d angles = truth.linear().eulerAngles(2, 1, 0) / simulator::Radians(1);
       Mounting stated = mounting;
       stated.rotationDegrees = {angles[2], angles[1], angles[0]};
       return stated;
     }},
    {MountingMistake::kReportedAxes,
     [](const Pose& truth, const Mounting&, const Observations&) {
       Eigen::Matrix3d fix;
       fix << -1, 0, 0, 0, 0, -1, 0, -1, 0;
       return MountingOf(Pose(fix.transpose()) * truth);
     }},
    {MountingMistake::kBoardTurned,
     [](const Pose& truth, const Mounting&, const Observations& o) {
       Pose halfTurn(Eigen::AngleAxisd(simulator::Radians(180), Eigen::Vector3d::UnitZ()));
       halfTurn.translation() << (o.boardColumns - 1) * o.square, (o.boardRows - 1) * o.square, 0;
       return MountingOf(truth * halfTurn);
     }},
};

TEST(MisreadTest, EachSlipOfTheMountingIsNamed) {
  for (const Misstatement& misstatement : kMisstatements) {
    for (std::uint64_t seed = 1; seed <= 2; ++seed) {
      SCOPED_TRACE(std::string(Name(misstatement.mistake)) + ", seed " + std::to_string(seed));
      test::KnownShoot shoot = test::MakeShoot(test::FortyNoisy(seed), 0.05);
      Observations& observations = shoot.observations;
      observations.mounting =
          misstatement.state(shoot.Transform_Tr_Chart, *observations.mounting, observations);
      observations.library = test::BelievingTheMounting(shoot).matrix();
      const CrossCheck check = Check(observations);
      ASSERT_TRUE(check.nominalMounting);
      EXPECT_EQ(check.nominalMounting->likelyMistake, misstatement.mistake);
      ASSERT_FALSE(check.findings.empty());
      const auto* finding = std::get_if<MountingOff>(&check.findings[0].kind);
      ASSERT_TRUE(finding);
      EXPECT_EQ(finding->likelyMistake, misstatement.mistake);
    }
  }
}

TEST(MisreadTest, AnErrorThatIsNoSlipHasNoName) {
  simulator::ShootOptions options = test::FortyNoisy(4);
  options.mountingErrorMm = 27;
  options.mountingErrorDegrees = 1;
  const CrossCheck check = Check(test::MakeShoot(options, 0.05).observations);
  ASSERT_TRUE(check.nominalMounting);
  EXPECT_EQ(check.nominalMounting->likelyMistake, std::nullopt);
}

}  // namespace
}  // namespace trackedcam::crosscheck
