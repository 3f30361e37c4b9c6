#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <opencv2/imgcodecs.hpp>

#include "host/exif_segments.h"
#include "host/input/image_header.h"
#include "support/platform.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

constexpr int kWidth = 70;
constexpr int kHeight = 40;

std::string Encoded(const std::string& extension, const std::vector<int>& parameters = {}) {
  std::vector<unsigned char> bytes;
  cv::imencode(extension, cv::Mat(kHeight, kWidth, CV_8UC3, cv::Scalar(10, 200, 90)), bytes,
               parameters);
  return {bytes.begin(), bytes.end()};
}

void ExpectHeader(const std::string& bytes, PhotographFormat format, int orientation = 1) {
  const auto header = ParsePhotographHeader(bytes);
  ASSERT_TRUE(header);
  EXPECT_EQ(header->format, format);
  EXPECT_EQ(header->width, std::uint64_t{kWidth});
  EXPECT_EQ(header->height, std::uint64_t{kHeight});
  EXPECT_EQ(header->orientation, orientation);
}

// A value of the first directory of a little-endian TIFF file.
std::string WithTag(std::string tiff, int tag, int newTag, int value) {
  const auto at = [&](std::size_t index) { return static_cast<unsigned char>(tiff[index]); };
  const std::size_t directory = at(4) + 256U * at(5) + 65536U * at(6);
  for (std::size_t entry = directory + 2; entry < directory + 2 + 12U * at(directory);
       entry += 12) {
    if (at(entry) + 256 * at(entry + 1) == tag) {
      tiff.replace(entry, 2, test::LittleEndian(static_cast<std::uint32_t>(newTag), 2));
      tiff.replace(entry + 8, 4, test::LittleEndian(static_cast<std::uint32_t>(value), 4));
    }
  }
  return tiff;
}

std::string BigTiff() {
  const auto number = [](std::uint32_t value, int bytes) {
    return test::LittleEndian(value, 4) + std::string(static_cast<std::size_t>(bytes) - 4, '\0');
  };
  const auto entry = [&](std::uint32_t tag, std::uint32_t type, std::uint32_t value) {
    return test::LittleEndian(tag, 2) + test::LittleEndian(type, 2) + number(1, 8) +
           number(value, 8);
  };
  return "II" + test::LittleEndian(43, 2) + test::LittleEndian(8, 2) + test::LittleEndian(0, 2) +
         number(16, 8) + number(3, 8) + entry(256, 4, kWidth) + entry(257, 16, kHeight) +
         entry(274, 3, 8);
}

TEST(PhotographHeader, IsReadFromEachFormat) {
  ExpectHeader(Encoded(".jpg"), PhotographFormat::kJpeg);
  ExpectHeader(Encoded(".jpg", {cv::IMWRITE_JPEG_PROGRESSIVE, 1}), PhotographFormat::kJpeg);
  ExpectHeader(Encoded(".png"), PhotographFormat::kPng);
  ExpectHeader(Encoded(".bmp"), PhotographFormat::kBmp);
  ExpectHeader(Encoded(".tiff"), PhotographFormat::kTiff);
  ExpectHeader(Encoded(".webp", {cv::IMWRITE_WEBP_QUALITY, 50}), PhotographFormat::kWebp);
  ExpectHeader(Encoded(".webp", {cv::IMWRITE_WEBP_QUALITY, 101}), PhotographFormat::kWebp);
  ExpectHeader(BigTiff(), PhotographFormat::kTiff, 8);
}

TEST(PhotographHeader, HoldsTheOrientationTag) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    for (const bool isBigEndian : {false, true}) {
      const std::string tiff = test::ExifTiff(orientation, isBigEndian);
      ExpectHeader(test::WithJpegExif(Encoded(".jpg"), tiff), PhotographFormat::kJpeg, orientation);
      ExpectHeader(test::WithPngExif(Encoded(".png"), tiff), PhotographFormat::kPng, orientation);
      ExpectHeader(test::WithWebpExif(Encoded(".webp"), kWidth, kHeight, tiff),
                   PhotographFormat::kWebp, orientation);
    }
    ExpectHeader(WithTag(Encoded(".tiff"), 284, 274, orientation), PhotographFormat::kTiff,
                 orientation);
  }
}

TEST(PhotographHeader, TakesAnotherTagForNone) {
  for (const int orientation : {0, 9, 255}) {
    ExpectHeader(test::WithJpegExif(Encoded(".jpg"), test::ExifTiff(orientation)),
                 PhotographFormat::kJpeg, 1);
  }
  ExpectHeader(test::WithJpegExif(Encoded(".jpg"), "http://no.tags/"), PhotographFormat::kJpeg, 1);
}

TEST(PhotographHeader, SkipsWhatElseAJpegHolds) {
  const std::string jpeg = Encoded(".jpg");
  const std::string parts = test::JpegSegment(0xE1, "http://ns.of.something/") +
                            test::JpegSegment(0xE2, std::string(60000, '\xFF')) + "\xFF\xFF\xFF";
  const std::string tagged = test::WithJpegExif(jpeg, test::ExifTiff(6));
  ExpectHeader(tagged.substr(0, 2) + parts + tagged.substr(2), PhotographFormat::kJpeg, 6);
}

// The decoder is the reference: it exchanges the sides where the header says so.
TEST(PhotographHeader, AgreesWithTheDecoder) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const std::string bytes =
        test::WithJpegExif(Encoded(".jpg"), test::ExifTiff(orientation, orientation % 2 == 0));
    const cv::Mat image = cv::imdecode(std::vector<char>(bytes.begin(), bytes.end()), 1);
    const auto header = ParsePhotographHeader(bytes);
    ASSERT_TRUE(header);
    EXPECT_EQ(image.cols, header->IsRotated() ? kHeight : kWidth) << orientation;
  }
}

TEST(PhotographHeader, BmpMayRunDownwards) {
  std::string bmp = Encoded(".bmp");
  bmp.replace(22, 4, test::LittleEndian(0U - kHeight, 4));
  ExpectHeader(bmp, PhotographFormat::kBmp);
}

// A decoder passes over bytes between the parts; so does whoever asks for the size.
TEST(PhotographHeader, IsFoundBehindFillingBytes) {
  const std::string jpeg = Encoded(".jpg");
  const std::string filled = jpeg.substr(0, 20) + std::string("\0\1\2\xFF\0", 5) + jpeg.substr(20);
  EXPECT_FALSE(cv::imdecode(std::vector<char>(filled.begin(), filled.end()), 1).empty());
  ExpectHeader(filled, PhotographFormat::kJpeg);
}

TEST(PhotographHeader, HasTheLargerOfTwoSizes) {
  const std::string tiff = WithTag(Encoded(".tiff"), 284, 256, 60000);
  EXPECT_EQ(ParsePhotographHeader(tiff)->width, 60000U);
}

TEST(PhotographHeader, IsNoneOfWhatIsNoPicture) {
  for (const std::string& bytes :
       {std::string(), std::string("BM"), std::string("a text\n"), std::string("\xFF\xD8\xFF"),
        std::string("II*\0\xFF\xFF\xFF\xFF", 8), std::string("RIFF????WEBP"),
        std::string("\x89PNG\r\n\x1A\n"), "\xFF\xD8" + std::string(5000, '\xFF')}) {
    EXPECT_FALSE(ParsePhotographHeader(bytes));
  }
}

TEST(PhotographHeader, IsNeverReadBeyondTheBytes) {
  for (const char* extension : {".jpg", ".png", ".bmp", ".tiff", ".webp"}) {
    const std::string whole = Encoded(extension);
    for (std::size_t length = 0; length < whole.size(); ++length) {
      const auto header = ParsePhotographHeader(whole.substr(0, length));
      if (header) {
        EXPECT_EQ(header->width, std::uint64_t{kWidth}) << extension << ' ' << length;
      }
    }
  }
}

TEST(PhotographHeader, SurvivesAnyBytes) {
  const std::uint32_t seed = 5;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const std::string tiff = test::ExifTiff(6);
  const std::vector<std::string> pictures = {test::WithJpegExif(Encoded(".jpg"), tiff),
                                             test::WithPngExif(Encoded(".png"), tiff),
                                             test::WithWebpExif(Encoded(".webp"), 9, 9, tiff),
                                             Encoded(".tiff"),
                                             Encoded(".bmp"),
                                             BigTiff()};
  for (int round = 0; round < 20000; ++round) {
    std::string bytes = pictures[static_cast<std::size_t>(round) % pictures.size()];
    for (int change = 0; change < 4; ++change) {
      bytes[random() % std::min<std::size_t>(bytes.size(), 120)] = static_cast<char>(random());
    }
    const auto header = ParsePhotographHeader(bytes);
    if (header) {
      EXPECT_GT(header->width * header->height, 0U);
      EXPECT_TRUE(header->orientation >= 1 && header->orientation <= 8);
    }
  }
}

TEST(PhotographHeader, NeedsASmallPartOfTheFile) {
  const std::string png = Encoded(".png");
  std::string chunks;
  for (int i = 0; i < 20000; ++i) {
    chunks += test::BigEndian(8192, 4) + "IDAT" + std::string(8196, 'x');
    if (i == 100) {
      break;
    }
  }
  const std::string bytes = png.substr(0, 33) + chunks + png.substr(33);
  std::size_t read = 0;
  const auto header = ReadPhotographHeader([&](std::uint64_t offset, std::size_t count) {
    read += count;
    return offset < bytes.size() ? bytes.substr(offset, count) : std::string();
  });
  ASSERT_TRUE(header);
  EXPECT_LT(read, bytes.size() / 100);
}

class PhotographHeaderOnDisk : public testing::Test {
 protected:
  test::TemporaryFolder folder;
};

TEST_F(PhotographHeaderOnDisk, IsReadFromAFile) {
  test::WriteFile(folder.File("a.jpg"), test::WithJpegExif(Encoded(".jpg"), test::ExifTiff(3)));
  const auto header = ReadPhotographHeader(folder.Path() / "a.jpg");
  ASSERT_TRUE(header);
  EXPECT_EQ(header->width, std::uint64_t{kWidth});
  EXPECT_EQ(header->orientation, 3);
}

TEST_F(PhotographHeaderOnDisk, IsNoneOfWhatIsNoFile) {
  EXPECT_FALSE(ReadPhotographHeader(folder.Path()));
  EXPECT_FALSE(ReadPhotographHeader(folder.Path() / "missing.jpg"));
  EXPECT_FALSE(ReadPhotographHeader(std::filesystem::path("/dev/zero")));
  if (test::MakePipe(folder.Path() / "pipe.jpg")) {
    EXPECT_FALSE(ReadPhotographHeader(folder.Path() / "pipe.jpg"));
  }
}

}  // namespace
}  // namespace trackedcam::host
