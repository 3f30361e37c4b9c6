#include "api/input_length.h"

#include "support/stage_test.h"

namespace trackedcam {
namespace {

using InputLengthTest = test::StageTest;

TEST_F(InputLengthTest, ThatIsTooShortIsNamedWithBothLengths) {
  EXPECT_EQ(CheckLength(log, "chartTrackerRotation", {1, 2}, 3), -1);
  EXPECT_EQ(LogLines(), std::vector<std::string>{"chartTrackerRotation has 2 elements, needs 3."});
}

TEST_F(InputLengthTest, ThatIsEnoughIsSilent) {
  EXPECT_EQ(CheckLength(log, "chartTrackerRotation", {1, 2, 3}, 3), 0);
  EXPECT_EQ(CheckLength(log, "chartTrackerRotation", {1, 2, 3, 4}, 3), 0);
  EXPECT_TRUE(LogLines().empty());
}

}  // namespace
}  // namespace trackedcam
