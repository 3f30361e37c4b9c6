#include "host/input/photograph_checks.h"

#include <filesystem>
#include <vector>

#include <gmock/gmock.h>
#include <opencv2/imgcodecs.hpp>

#include "host/exif_segments.h"
#include "host/findings/finding_text.h"
#include "host/input/photograph_file.h"
#include "support/platform.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string Jpeg(int width, int height) {
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", cv::Mat(height, width, CV_8UC3, cv::Scalar(90, 60, 30)), bytes);
  return {bytes.begin(), bytes.end()};
}

std::string Turned(int width, int height, int orientation) {
  return test::WithJpegExif(Jpeg(width, height), test::ExifTiff(orientation));
}

// A PNG file that promises so many pixels and holds none.
std::string PngHeader(std::uint32_t width, std::uint32_t height) {
  return "\x89PNG\r\n\x1A\n" + test::BigEndian(13, 4) + "IHDR" + test::BigEndian(width, 4) +
         test::BigEndian(height, 4) + std::string(9, '\x08');
}

class PhotographChecksTest : public testing::Test {
 protected:
  PhotographChecksTest() {
    std::filesystem::create_directories(folder.Path() / "photos");
    inputs.data = folder.Path() / "data.csv";
    inputs.workingFolder = folder.Path();
    inputs.sensorMm = {36, 24};
    for (int i = 1; i <= 4; ++i) {
      Add("photos/" + std::to_string(i) + ".jpg", Jpeg(60, 40));
    }
  }

  void Name(const std::string& path) {
    const std::size_t line = rows.size() + 2;
    rows.push_back({line, "0," + path + ",0,0,1,1,0,0,0,0,0,0,1,0,0,0", path});
  }

  void Add(const std::string& path, const std::string& content) {
    test::WriteFile(folder.File(path), content);
    Name(path);
  }

  PhotographChecks Check() const { return CheckPhotographs(rows, inputs); }

  // The one finding.
  Finding TheFinding() const {
    const auto findings = Check().findings;
    EXPECT_THAT(findings, SizeIs(1));
    return findings.empty() ? Finding() : findings[0];
  }

  void ExpectTheFinding(const std::string& id, Severity severity,
                        const std::vector<std::string>& photographs) const {
    const Finding finding = TheFinding();
    EXPECT_EQ(Id(finding), id);
    EXPECT_EQ(finding.severity, severity);
    EXPECT_EQ(finding.photographs, photographs);
  }

  template <class Kind>
  Kind TheKind() const {
    return std::get<Kind>(TheFinding().kind);
  }

  test::TemporaryFolder folder;
  Inputs inputs;
  std::vector<DataRow> rows;
};

TEST_F(PhotographChecksTest, FindNothingInOrdinaryOnes) {
  Name("");
  EXPECT_THAT(Check().findings, IsEmpty());
  EXPECT_THAT(Check().leaveOut, IsEmpty());
}

TEST_F(PhotographChecksTest, FindOtherSizes) {
  Add("photos/5.jpg", Jpeg(30, 20));
  Add("photos/6.jpg", Jpeg(90, 60));
  ExpectTheFinding("photographSizes", Severity::kError, {"photos/5.jpg", "photos/6.jpg"});
  const auto sizes = TheKind<PhotographSizes>();
  EXPECT_EQ(sizes.common, (ImageSize{60, 40}));
  EXPECT_THAT(sizes.sizes, ElementsAre(ImageSize{30, 20}, ImageSize{90, 60}));
  EXPECT_EQ(sizes.count, 2U);
  EXPECT_THAT(Check().leaveOut, IsEmpty());
}

TEST_F(PhotographChecksTest, FindOrientationTagsThatKeepTheSize) {
  Add("photos/5.jpg", Turned(60, 40, 3));
  Add("photos/6.jpg", Turned(60, 40, 1));
  ExpectTheFinding("orientationTag", Severity::kWarning, {"photos/5.jpg"});
  EXPECT_FALSE(TheKind<OrientationTag>().isMixed);
}

TEST_F(PhotographChecksTest, FindOrientationTagsThatMixSizes) {
  Add("photos/5.jpg", Turned(60, 40, 6));
  ExpectTheFinding("orientationTag", Severity::kError, {"photos/5.jpg"});
  EXPECT_TRUE(TheKind<OrientationTag>().isMixed);
}

TEST_F(PhotographChecksTest, FindOrientationTagsOnAll) {
  rows.clear();
  inputs.sensorMm = {24, 36};
  for (int i = 1; i <= 5; ++i) {
    Add("photos/" + std::to_string(i) + ".jpg", Turned(60, 40, 8));
  }
  EXPECT_STREQ(Id(TheFinding()), "orientationTag");
  EXPECT_FALSE(TheKind<OrientationTag>().isMixed);
  EXPECT_EQ(TheKind<OrientationTag>().count, 5U);
  EXPECT_EQ(TheKind<OrientationTag>().all, 5U);
}

TEST_F(PhotographChecksTest, FindAnotherShapeThanTheSensors) {
  inputs.sensorMm = {36, 20.25};
  ExpectTheFinding("aspect", Severity::kNote, {});
  EXPECT_EQ(TheKind<Aspect>().image, (ImageSize{60, 40}));
  EXPECT_THAT(Advice(TheFinding()), HasSubstr("--sensor 30.38x20.25 "));
  inputs.sensorMm = {36, 30};
  EXPECT_THAT(Advice(TheFinding()), HasSubstr("--sensor 36x24 "));
  inputs.sensorMm = {36, 24.3};  // 1.2 %
  EXPECT_STREQ(Id(TheFinding()), "aspect");
  inputs.sensorMm = {36, 24.2};  // 0.8 %
  EXPECT_THAT(Check().findings, IsEmpty());
}

TEST_F(PhotographChecksTest, LeaveOutEnormousPictures) {
  Add("photos/5.png", PngHeader(30000, 30000));
  Add("photos/6.png", PngHeader(0xFFFFFFFF, 0xFFFFFFFF));
  ExpectTheFinding("hugePhotograph", Severity::kError, {"photos/5.png", "photos/6.png"});
  EXPECT_THAT(TheKind<HugePhotographs>().sizes,
              ElementsAre(ImageSize{30000, 30000}, ImageSize{4294967295, 4294967295}));
  EXPECT_THAT(Check().leaveOut, ElementsAre(4U, 5U));
}

TEST_F(PhotographChecksTest, TakeTwoHundredMegapixels) {
  rows.clear();
  inputs.sensorMm = {40, 20};
  Add("photos/5.png", PngHeader(20000, 10000));
  EXPECT_THAT(Check().findings, IsEmpty());
  Add("photos/5.png", PngHeader(20000, 10001));
  EXPECT_STREQ(Id(TheFinding()), "hugePhotograph");
}

TEST_F(PhotographChecksTest, LeaveOutSidesThatNoDecoderTakes) {
  Add("photos/5.png", PngHeader((1 << 20) + 1, 1));
  EXPECT_STREQ(Id(TheFinding()), "hugePhotograph");
  EXPECT_THAT(Check().leaveOut, ElementsAre(4U));
}

// Each scan after the first repeats the last one of a progressive JPEG.
TEST_F(PhotographChecksTest, LeaveOutJpegsOfManyScans) {
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", cv::Mat(40, 60, CV_8UC3, cv::Scalar(9, 99, 199)), bytes,
               {cv::IMWRITE_JPEG_PROGRESSIVE, 1});
  const std::string jpeg(bytes.begin(), bytes.end());
  const std::string end("\xFF\xD9");
  const std::string scan = jpeg.substr(jpeg.rfind("\xFF\xDA"));
  const auto withScans = [&](std::size_t count) {
    std::string text = jpeg.substr(0, jpeg.size() - end.size());
    for (std::size_t i = 0; i < count; ++i) {
      text += scan.substr(0, scan.size() - end.size());
    }
    return text + end;
  };
  Add("photos/5.jpg", withScans(20));
  EXPECT_THAT(Check().findings, IsEmpty());
  Add("photos/6.jpg", withScans(100));
  Add("photos/7.jpg", withScans(2000));
  Add("photos/8.jpg", withScans(65));
  ExpectTheFinding("costlyPhotograph", Severity::kError,
                   {"photos/6.jpg", "photos/7.jpg", "photos/8.jpg"});
  EXPECT_THAT(Check().leaveOut, ElementsAre(5U, 6U, 7U));
  EXPECT_EQ(ReadPhotograph(folder.Path() / "photos" / "6.jpg").bytes, "");
  EXPECT_EQ(ReadPhotograph(folder.Path() / "photos" / "5.jpg").bytes, withScans(20));
}

TEST_F(PhotographChecksTest, LeaveOutFilesOfManyTimesTheirPixels) {
  Add("photos/5.jpg", Jpeg(60, 40));
  std::filesystem::resize_file(folder.Path() / "photos" / "5.jpg", 60 << 20);
  EXPECT_THAT(Check().findings, IsEmpty());
  std::filesystem::resize_file(folder.Path() / "photos" / "5.jpg", 65 << 20);
  EXPECT_STREQ(Id(TheFinding()), "costlyPhotograph");
  EXPECT_EQ(ReadPhotograph(folder.Path() / "photos" / "5.jpg").bytes, "");
}

// Their size, however large, cannot be read.
TEST_F(PhotographChecksTest, LeaveOutPicturesWithoutASize) {
  Add("photos/5.jpg", Jpeg(60, 40).substr(0, 30));
  Add("photos/6.tif", std::string("II*\0\xFF\xFF\xFF\x7F", 8));
  ExpectTheFinding("unreadablePhotographs", Severity::kError, {"photos/5.jpg", "photos/6.tif"});
  EXPECT_THAT(Check().leaveOut, ElementsAre(4U, 5U));
}

TEST_F(PhotographChecksTest, LeaveOutOtherFormats) {
  const std::vector<std::string> others = {"P6\n99999 99999\n255\n",
                                           "PF\n99999 99999\n-1\n",
                                           std::string("\0\0\0\x0CjP  \r\n\x87\n", 12),
                                           "\xFF\x4F\xFF\x51",
                                           "\x59\xA6\x6A\x95",
                                           "#?RADIANCE\n\n-Y 99999 +X 99999\n",
                                           std::string("\x76\x2F\x31\x01\2\0\0\0", 8),
                                           "GIF89a",
                                           std::string("\0\0\0\x1C"
                                                       "ftypavif",
                                                       12),
                                           std::string(128, '\0') + "DICM",
                                           "SIMPLE  =                    T",
                                           "no picture"};
  for (std::size_t i = 0; i < others.size(); ++i) {
    Add("photos/" + std::to_string(5 + i) + ".jpg", others[i]);
  }
  EXPECT_STREQ(Id(TheFinding()), "otherFormat");
  EXPECT_THAT(TheFinding().photographs, SizeIs(others.size()));
  EXPECT_THAT(Check().leaveOut, SizeIs(others.size()));
}

TEST_F(PhotographChecksTest, LeaveOutRowsWithoutPhotographsWhenTheyAreManyThousands) {
  for (int i = 0; i < 10000; ++i) {
    Name(i % 2 == 0 ? "" : "photos/none.jpg");
  }
  EXPECT_THAT(Check().leaveOut, IsEmpty());
  Name("photos/none.jpg");
  Name("");
  EXPECT_THAT(Check().leaveOut, ElementsAre(10004U, 10005U));
  EXPECT_THAT(Check().findings.front().photographs, SizeIs(100));
}

TEST_F(PhotographChecksTest, LeaveOutFolders) {
  Name("photos");
  ExpectTheFinding("notAFile", Severity::kNote, {"photos"});
  EXPECT_THAT(Check().leaveOut, ElementsAre(4U));
}

TEST_F(PhotographChecksTest, LeaveOutPipesAndNeverOpenThem) {
  if (!test::MakePipe(folder.Path() / "pipe.jpg")) {
    GTEST_SKIP() << "no such pipes here";
  }
  Name("pipe.jpg");
  Name("/dev/zero");
  ExpectTheFinding("notAFile", Severity::kError, {"pipe.jpg", "/dev/zero"});
  EXPECT_THAT(Check().leaveOut, ElementsAre(4U, 5U));
}

TEST_F(PhotographChecksTest, LeaveOutPathsThatAreNotUtf8) {
  Name("m\xFCller.jpg");
  EXPECT_THAT(Check().findings, IsEmpty());  // the data file's check names it
  EXPECT_THAT(Check().leaveOut, ElementsAre(4U));
}

TEST_F(PhotographChecksTest, FindEmptyOnes) {
  Add("photos/5.jpg", "");
  ExpectTheFinding("unreadablePhotographs", Severity::kNote, {"photos/5.jpg"});
}

TEST_F(PhotographChecksTest, FindMissingOnes) {
  Name("photos/5.jpg");
  ExpectTheFinding("missingPhotographs", Severity::kNote, {"photos/5.jpg"});
  EXPECT_EQ(TheKind<MissingPhotographs>().folder, "");
  for (int i = 6; i <= 7; ++i) {
    Name("photos/" + std::to_string(i) + ".jpg");
  }
  ExpectTheFinding("missingPhotographs", Severity::kError,
                   {"photos/5.jpg", "photos/6.jpg", "photos/7.jpg"});
  EXPECT_EQ(TheKind<MissingPhotographs>().count, 3U);
  EXPECT_EQ(TheKind<MissingPhotographs>().all, 7U);
}

TEST_F(PhotographChecksTest, KnowTheFolderThatMissingOnesBeginIn) {
  inputs.workingFolder = folder.Path() / "photos";
  const auto missing = TheKind<MissingPhotographs>();
  EXPECT_EQ(missing.folder, folder.Path().u8string());
  EXPECT_EQ(missing.nameInFolder, "photos/1.jpg");
  EXPECT_TRUE(missing.isWorkingFolder);
}

TEST_F(PhotographChecksTest, KnowWhereMissingOnesLie) {
  rows.clear();
  for (const char* path : {"/somewhere/else/1.jpg", "D:\\takes\\new\\1.jpg", "take 7/1.jpg"}) {
    Name(path);
    const auto missing = TheKind<MissingPhotographs>();
    EXPECT_EQ(missing.folder, (folder.Path() / "photos").u8string());
    EXPECT_EQ(missing.nameInFolder, "1.jpg");
    EXPECT_FALSE(missing.isWorkingFolder);
    rows.clear();
  }
}

TEST_F(PhotographChecksTest, KnowPathsThatAreWrittenALittleDifferently) {
  using Cause = MissingPhotographs::Cause;
  std::vector<std::pair<const char*, Cause>> paths = {{" photos/1.jpg", Cause::kSpaces},
                                                      {"photos/1.jpg\t", Cause::kSpaces}};
  if (std::filesystem::path::preferred_separator == '/') {
    paths.emplace_back("photos\\1.jpg", Cause::kBackslashes);
    paths.emplace_back(" photos\\1.jpg", Cause::kBackslashes);
  }
  for (const auto& [path, cause] : paths) {
    rows.clear();
    Name(path);
    EXPECT_EQ(TheKind<MissingPhotographs>().cause, cause) << path;
    EXPECT_EQ(TheKind<MissingPhotographs>().rightPath, "photos/1.jpg");
  }
}

TEST_F(PhotographChecksTest, MissNothingThatRowsOfAnotherFormName) {
  rows.push_back({1, "Frame,Image,x,y,z", "Image"});
  rows.push_back({9, "7,0.5,a.jpg,0,0,1,1,0,0,0,0,0,0,1,0,0,0", "0.5"});
  EXPECT_THAT(Check().findings, IsEmpty());
}

}  // namespace
}  // namespace trackedcam::host
