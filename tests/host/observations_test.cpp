#include <utility>

#include <gtest/gtest.h>

#include "host/verdict/cross_check_adapter.h"

namespace trackedcam::host {
namespace {

class ObservationsTest : public testing::Test {
 protected:
  ObservationsTest() {
    record.board = BoardRecord{3, 2, 0.03};
    record.lens = LensRecord{1920, 1080, 1600, 1601, 959, 539, -0.05, 0.02, 0, 0, 0};
    RawData raw;
    for (std::size_t i = 0; i < raw.row.size(); ++i) {
      raw.row[i] = static_cast<double>(i);
    }
    raw.corners.assign(6, {10, 20});
    record.photographs = {{"a", DropReason::kBoardNotFound, std::nullopt},
                          {"b", DropReason::kOutlier, raw},
                          {"c", std::nullopt, raw}};
    record.transformCamTc = {0, -1, 0, 0.1, 1, 0, 0, 0.2, 0, 0, 1, 0.3, 0, 0, 0, 1};
    record.invertsQuaternions = true;
    inputs.mounting = Mounting{{1, 2, 3}, {4, 5, 6}};
    inputs.goodEnough = {0.5, 0.05};
  }

  LibraryRun run;
  RunRecord& record = run.record;
  Inputs inputs;
};

TEST_F(ObservationsTest, HoldEveryPhotographWithCorners) {
  const auto observations = ObservationsOf(run, inputs);
  ASSERT_TRUE(observations);
  EXPECT_EQ(observations->boardColumns, 3);
  EXPECT_EQ(observations->boardRows, 2);
  EXPECT_EQ(observations->square, 0.03);
  EXPECT_EQ(observations->lens.width, 1920);
  EXPECT_EQ(observations->lens.fy, 1601);
  EXPECT_EQ(observations->lens.k2, 0.02);
  EXPECT_TRUE(observations->invertTrackerQuaternions);
  ASSERT_EQ(observations->photographs.size(), 2U);
  const crosscheck::Photograph& b = observations->photographs[0];
  EXPECT_EQ(b.name, "b");
  EXPECT_EQ(b.camera.position, Eigen::Vector3d(1, 2, 3));
  EXPECT_EQ(b.camera.quaternionWxyz, Eigen::Vector4d(4, 5, 6, 7));
  EXPECT_EQ(b.chart.position, Eigen::Vector3d(8, 9, 10));
  EXPECT_EQ(b.chart.quaternionWxyz, Eigen::Vector4d(11, 12, 13, 14));
  EXPECT_EQ(b.corners.size(), 6U);
  EXPECT_EQ(observations->goodEnough.mm, 0.5);
  EXPECT_EQ(observations->goodEnough.degrees, 0.05);
}

TEST_F(ObservationsTest, HaveTheResultWhetherTheMountingIsKnownOrNot) {
  const auto stated = ObservationsOf(run, inputs);
  ASSERT_TRUE(stated->library);
  EXPECT_EQ((*stated->library)(0, 1), -1);
  EXPECT_EQ((*stated->library)(2, 3), 0.3);
  EXPECT_TRUE(stated->mounting);
  const auto open = ObservationsOf(run, Inputs());
  EXPECT_TRUE(open->library);
  EXPECT_FALSE(open->mounting);
  std::swap(record.transformCamTc, run.outputs.transformCamTc);  // of a log that is cut short
  EXPECT_EQ((*ObservationsOf(run, inputs)->library)(2, 3), 0.3);
  run.outputs.transformCamTc.clear();
  EXPECT_FALSE(ObservationsOf(run, inputs)->library);
}

TEST_F(ObservationsTest, NeedBoardAndLens) {
  const auto lens = record.lens;
  record.lens = std::nullopt;
  EXPECT_FALSE(ObservationsOf(run, inputs));
  record.lens = lens;
  record.board = std::nullopt;
  EXPECT_FALSE(ObservationsOf(run, inputs));
}

}  // namespace
}  // namespace trackedcam::host
