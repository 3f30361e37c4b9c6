#include "host/input/inputs.h"

#include <limits>

#include <gtest/gtest.h>

#include "tests/support/platform.h"

namespace trackedcam::host {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Inputs Possible() {
  Inputs inputs;
  inputs.sensorMm = {36, 20.25};
  inputs.board = {9, 6};
  inputs.squareMetres = 0.03;
  inputs.mounting = Mounting{{12, -8, 5}, {0.1, -0.05, 0.02}};
  return inputs;
}

template <class Change>
void ExpectRefused(Change change) {
  Inputs inputs = Possible();
  change(inputs);
  EXPECT_THROW(RequirePossible(inputs), InputError);
}

TEST(RequirePossibleTest, TakesWhatIsPossible) {
  Inputs inputs = Possible();
  RequirePossible(inputs);
  inputs.mounting.reset();
  inputs.expectedRecords = 0;
  RequirePossible(inputs);
}

TEST(RequirePossibleTest, RefusesEachValueThatIsNot) {
  for (const double bad : {0.0, -1.0, kNan, kInfinity}) {
    ExpectRefused([&](Inputs& inputs) { inputs.sensorMm[0] = bad; });
    ExpectRefused([&](Inputs& inputs) { inputs.sensorMm[1] = bad; });
    ExpectRefused([&](Inputs& inputs) { inputs.squareMetres = bad; });
    ExpectRefused([&](Inputs& inputs) { inputs.goodEnough.mm = bad; });
    ExpectRefused([&](Inputs& inputs) { inputs.goodEnough.degrees = bad; });
  }
  ExpectRefused([](Inputs& inputs) { inputs.squareMetres = 30; });
  for (const int bad : {-1, 0, 2, 1001, std::numeric_limits<int>::max()}) {
    ExpectRefused([&](Inputs& inputs) { inputs.board[0] = bad; });
    ExpectRefused([&](Inputs& inputs) { inputs.board[1] = bad; });
  }
  ExpectRefused([](Inputs& inputs) { inputs.mounting->rotationDegrees[2] = kNan; });
  ExpectRefused([](Inputs& inputs) { inputs.mounting->translationMetres[0] = kInfinity; });
  ExpectRefused([](Inputs& inputs) { inputs.expectedRecords = -1; });
}

// The library writes them into lines.
TEST(RequirePossibleTest, RefusesFoldersWithControlCharacters) {
  for (const char* name : {"/a\nb", "/a\rb", "/a\tb", "/a\x1b[2J", "/a\x7F"}) {
    ExpectRefused([&](Inputs& inputs) { inputs.workingFolder = name; });
    ExpectRefused([&](Inputs& inputs) { inputs.logFolder = name; });
  }
}

TEST(RequirePossibleTest, RefusesFoldersThatAreNotUtf8) {
  if (!test::kPathsAreBytes) {
    GTEST_SKIP() << "each path is UTF-16 here";
  }
  ExpectRefused([](Inputs& inputs) { inputs.workingFolder = "/b\xE4r"; });
  ExpectRefused([](Inputs& inputs) { inputs.logFolder = "/b\xE4r/log"; });
}

}  // namespace
}  // namespace trackedcam::host
