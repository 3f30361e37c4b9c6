#include "app/options/option_values.h"

#include <string>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

namespace trackedcam::app {
namespace {

using testing::ElementsAre;

template <class Parse>
std::string ErrorOf(Parse parse, const std::string& text) {
  try {
    parse("--option", text);
  } catch (const CLI::ValidationError& error) {
    return error.what();
  }
  return "no error";
}

TEST(OptionValues, AreReadWhole) {
  EXPECT_THAT(ParseSensor("", "36x20.25"), ElementsAre(36, 20.25));
  EXPECT_THAT(ParseImageSize("", "1920x1080"), ElementsAre(1920, 1080));
  EXPECT_THAT(ParseBoard("", "9x6"), ElementsAre(9, 6));
  EXPECT_THAT(ParseTriple("", "12,-8,5"), ElementsAre(12, -8, 5));
  EXPECT_THAT(ParseTriple("", "1e-3, -.5, 0"), ElementsAre(0.001, -0.5, 0));
  EXPECT_THAT(ParseLens("", "9,8,7,6,-0.1,0"), ElementsAre(9, 8, 7, 6, -0.1, 0));
  EXPECT_THAT(ParseTangential("", "0.001, -5e-4"), ElementsAre(0.001, -0.0005));
  EXPECT_EQ(ParseSquare("", "0.03"), 0.03);
  EXPECT_EQ(ParseSquare("", "12.7mm"), 0.0127);
  EXPECT_EQ(ParseSquare("", "3 cm"), 0.03);
  EXPECT_EQ(ParseCount("", "0"), 0);
}

TEST(OptionValues, SensorHasTwoLengths) {
  for (const char* text : {"", "36", "36x", "36*20", "0x20", "36x-1", "36x20x3", "nanx20"}) {
    EXPECT_EQ(
        ErrorOf(ParseSensor, text),
        "--option: " + std::string(text) + " is not WIDTHxHEIGHT in millimetres, such as 36x20.25");
  }
}

TEST(OptionValues, ImageSizeHasTwoWholeNumbers) {
  for (const char* text : {"1920", "1920x0", "1920.5x1080", "99999999999x1"}) {
    EXPECT_EQ(
        ErrorOf(ParseImageSize, text),
        "--option: " + std::string(text) + " is not WIDTHxHEIGHT in pixels, such as 1920x1080");
  }
}

TEST(OptionValues, BoardHasTwoNumbersOfCorners) {
  for (const char* text : {"", "9", "9x", "9,6", "9.0x6", "9x6x"}) {
    EXPECT_EQ(ErrorOf(ParseBoard, text),
              "--option: " + std::string(text) + " is not COLSxROWS of inner corners, such as 9x6");
  }
}

TEST(OptionValues, BoardHasThreeCornersInEachDirection) {
  EXPECT_THAT(ParseBoard("", "3x3"), ElementsAre(3, 3));
  for (const char* text : {"2x6", "9x2", "-9x6"}) {
    EXPECT_EQ(ErrorOf(ParseBoard, text),
              "--option: " + std::string(text) +
                  " is too small: the chart needs at least 3 inner corners (4 squares) in each "
                  "direction");
  }
}

TEST(OptionValues, TripleHasThreeNumbers) {
  for (const char* text : {"", "1,2", "1,2,3,4", "1,2,x", "1;2;3", "1,2,inf"}) {
    EXPECT_EQ(
        ErrorOf(ParseTriple, text),
        "--option: " + std::string(text) + " is not three numbers X,Y,Z, such as 0.1,-0.05,0.02");
  }
}

TEST(OptionValues, TangentialDistortionHasTwoNumbers) {
  for (const char* text : {"", "0.001", "1,2,3", "0.001,x", "0.001,nan"}) {
    EXPECT_EQ(ErrorOf(ParseTangential, text),
              "--option: " + std::string(text) + " is not P1,P2, such as 0.001,-0.0005");
  }
}

TEST(OptionValues, QuaternionOrderIsOneOfTwo) {
  EXPECT_FALSE(ParseQuaternionOrder("", "wxyz"));
  EXPECT_TRUE(ParseQuaternionOrder("", "xyzw"));
  EXPECT_EQ(ErrorOf(ParseQuaternionOrder, "wzyx"), "--option: wzyx is not one of wxyz, xyzw");
}

TEST(OptionValues, GoodEnoughIsInMillimetresAndDegrees) {
  for (const char* text : {"2mm,0.2deg", "2,0.2", " 2 mm , 0.2 deg "}) {
    const host::Accuracy goodEnough = ParseGoodEnough("", text);
    EXPECT_EQ(goodEnough.mm, 2) << text;
    EXPECT_EQ(goodEnough.degrees, 0.2) << text;
  }
  for (const char* text : {"", "2mm", "2mm,", "2cm,0.2deg", "0,0.2", "2,-1", "2,0.2,1", "inf,1"}) {
    EXPECT_EQ(ErrorOf(ParseGoodEnough, text),
              "--option: " + std::string(text) + " is not MM,DEGREES, such as 2mm,0.2deg");
  }
}

TEST(OptionValues, APercentageMayHaveItsSign) {
  EXPECT_DOUBLE_EQ(ParsePercent("", "0.1%"), 0.001);
  EXPECT_DOUBLE_EQ(ParsePercent("", "0.5"), 0.005);
  EXPECT_DOUBLE_EQ(ParsePercent("", "0"), 0);
  for (const char* text : {"", "%", "-0.1%", "11%", "nan", "0.1 mm"}) {
    EXPECT_EQ(ErrorOf(ParsePercent, text),
              "--option: " + std::string(text) + " is not a percentage from 0 to 10, such as 0.1%");
  }
}

TEST(OptionValues, DistancesAreInMetresOrHaveAUnit) {
  EXPECT_THAT(ParseDistances("", "4"), ElementsAre(4));
  EXPECT_THAT(ParseDistances("", "4m,80cm, 2500 mm"), ElementsAre(4, 0.8, 2.5));
  for (const char* text : {"4,", ",4", "4,,8", "0", "4,-1m", "nan", "inf", "4;8", "4 km", "far"}) {
    EXPECT_EQ(ErrorOf(ParseDistances, text),
              "--option: " + std::string(text) +
                  " is not a list of distances in metres, such as 2,4.5, or with a unit, such as "
                  "4m,80cm");
  }
}

TEST(OptionValues, TranslationMayHaveUnits) {
  EXPECT_THAT(ParseTranslation("", "0.1,-0.05,0.02"), ElementsAre(0.1, -0.05, 0.02));
  EXPECT_THAT(ParseTranslation("", "100mm,-50mm,20mm"), ElementsAre(0.1, -0.05, 0.02));
  EXPECT_THAT(ParseTranslation("", "100,-50,20mm"), ElementsAre(0.1, -0.05, 0.02));
  EXPECT_THAT(ParseTranslation("", "10 cm, -50 mm, 2cm"), ElementsAre(0.1, -0.05, 0.02));
  EXPECT_THAT(ParseTranslation("", "10, -5, 0 cm"), ElementsAre(0.1, -0.05, 0));
}

TEST(OptionValues, TranslationIsThreeLengths) {
  for (const char* text : {"", "1,2", "1,2,3,4", "1;2;3", "1,2,nan", "100mm,-50,20", "1,-5cm,20mm",
                           "100,-50mm,20", "0.1m,0,0", "mm,mm,mm", ",,mm", "1,2,infmm"}) {
    EXPECT_EQ(ErrorOf(ParseTranslation, text),
              "--option: " + std::string(text) +
                  " is not three lengths X,Y,Z in metres, such as 0.1,-0.05,0.02, or with a unit, "
                  "such as 100,-50,20mm");
  }
}

TEST(OptionValues, TranslationThatSeemsToBeMillimetresIsRefused) {
  EXPECT_EQ(
      ErrorOf(ParseTranslation, "100,-50,20"),
      "--option: 100,-50,20 is 100 metres from the tracker; for millimetres write 100,-50,20mm, "
      "for centimetres 100,-50,20cm");
  EXPECT_EQ(
      ErrorOf(ParseTranslation, "0,-3.5,0"),
      "--option: 0,-3.5,0 is 3.5 metres from the tracker; for millimetres write 0,-3.5,0mm, for "
      "centimetres 0,-3.5,0cm");
  EXPECT_THAT(ParseTranslation("", "3,-3,0"), ElementsAre(3, -3, 0));
  EXPECT_THAT(ParseTranslation("", "400,0,0cm "), ElementsAre(4, 0, 0));  // with its unit
}

TEST(OptionValues, SquareIsInMetres) {
  EXPECT_EQ(ErrorOf(ParseSquare, "30"),
            "--option: 30 is 30 metres, too large for a square; for millimetres write 30mm");
  EXPECT_EQ(ErrorOf(ParseSquare, "1"),
            "--option: 1 is 1 metres, too large for a square; for millimetres write 1mm");
  EXPECT_EQ(ErrorOf(ParseSquare, "300cm"), "--option: 300cm is 3 metres, too large for a square");
  EXPECT_EQ(ParseSquare("", "0.999"), 0.999);
}

TEST(OptionValues, SquareIsALength) {
  for (const char* text : {"", "0", "-0.03", "nan", "0.03m", "0,03", "mm", "-3cm", "infmm"}) {
    EXPECT_EQ(ErrorOf(ParseSquare, text),
              "--option: " + std::string(text) +
                  " is not a length in metres, such as 0.03, or with a unit, such as 30mm");
  }
}

TEST(OptionValues, CountIsAWholeNumber) {
  for (const char* text : {"", "-1", "4.5", "many"}) {
    EXPECT_EQ(ErrorOf(ParseCount, text),
              "--option: " + std::string(text) + " is not a number of records, such as 40");
  }
}

TEST(OptionValues, PapersGoByName) {
  EXPECT_EQ(ParsePaper("", "A3").longSide, 420);
  EXPECT_EQ(ParsePaper("", "letter").name, "Letter");
  for (const char* text : {"", "A", "A9", "A44"}) {
    EXPECT_EQ(ErrorOf(ParsePaper, text), "--option: " + std::string(text) +
                                             " is not one of A0, A1, A2, A3, A4, Letter, Tabloid");
  }
}

TEST(OptionValues, EnginesGoByName) {
  EXPECT_EQ(ParseEngine("", "ue5-xn"), &host::kEngines[2]);
  EXPECT_THAT(ParseEngines("", "ue4, aximmetry"),
              ElementsAre(&host::kEngines[0], &host::kEngines[3]));
  for (const char* text : {"", "UE4", "ue4,ue5"}) {
    EXPECT_EQ(ErrorOf(ParseEngine, text),
              "--option: " + std::string(text) +
                  " is not one of ue4, ue5, ue5-xn, aximmetry, unreal, unity");
  }
  EXPECT_EQ(ErrorOf(ParseEngines, "ue4,ue3"),
            "--option: ue3 is not one of ue4, ue5, ue5-xn, aximmetry, unreal, unity");
  EXPECT_NE(ErrorOf(ParseEngines, "ue4,"), "no error");
}

TEST(OptionValues, AxesOfAnEngineGoByNameOrByLetters) {
  EXPECT_EQ(ParseParentAxesText("--option", "-z,x,y"), "-z,x,y");
  EXPECT_EQ(ParseParentAxesText("--option", "minus-z-forward"), "minus-z-forward");
  EXPECT_EQ(ErrorOf(ParseParentAxesText, "x,y,z").find("--option: x,y,z is right-handed"), 0U);
  EXPECT_EQ(ParseTrackerAxes("--option", "unity")->name, "unity");
  EXPECT_EQ(ErrorOf(ParseTrackerAxes, "Unity"),
            "--option: Unity is not one of reported, unreal, unity");
  EXPECT_EQ(ParseTrackerUnit("--option", "mm")->unitsPerMetre, 1000);
  EXPECT_EQ(ErrorOf(ParseTrackerUnit, "inch"), "--option: inch is not one of m, cm, mm, in");
  EXPECT_TRUE(ParseMountingAxes("--option", "reported"));
  EXPECT_FALSE(ParseMountingAxes("--option", "fixed"));
  EXPECT_EQ(ErrorOf(ParseMountingAxes, "tracker"),
            "--option: tracker is not one of fixed, reported");
}

}  // namespace
}  // namespace trackedcam::app
