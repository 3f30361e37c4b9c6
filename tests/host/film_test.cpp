#include "host/pair/film.h"

#include <gmock/gmock.h>

#include "host/input/input_error.h"
#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class FilmTest : public testing::Test {
 protected:
  void MakeFrames(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      test::WriteFile(folder.File(name), "a picture");
    }
  }

  Film WithTimes(const std::string& csv) {
    test::WriteFile(folder.File("times.csv"), csv);
    return ReadFilm(folder.Path(), folder.Path() / "times.csv");
  }

  std::string ErrorOf(const std::string& csv) {
    try {
      WithTimes(csv);
    } catch (const InputError& error) {
      return error.what();
    }
    return "";
  }

  static std::vector<std::string> Names(const Film& film) {
    std::vector<std::string> names;
    for (const FilmFrame& frame : film.frames) {
      names.push_back(frame.name);
    }
    return names;
  }

  test::TemporaryFolder folder;
};

TEST_F(FilmTest, ReadsTimesInAnyOrderAndCountsWhatDoesNotFit) {
  MakeFrames({"a.jpg", "b.PNG", "c.jpg", "d.jpg", "notes.txt"});
  const Film film = WithTimes("frame,time\r\nb.PNG,2.5\r\na.jpg, 1e0\r\nx.jpg,3\r\nc.jpg,2.5\r\n");
  EXPECT_THAT(Names(film), ElementsAre("a.jpg", "b.PNG"));
  EXPECT_EQ(film.frames[0].seconds, 1);
  EXPECT_EQ(film.frames[1].seconds, 2.5);
  EXPECT_EQ(film.timesWithoutFrame, 1U);
  EXPECT_EQ(film.repeatedTimes, 1U);
  EXPECT_EQ(film.framesWithoutTime, 1U);
}

TEST_F(FilmTest, TakesNumbersForNames) {
  MakeFrames({"f9.jpg", "f10.jpg", "f11.jpg"});
  const Film film = WithTimes("frame,time\n1,5\n3,7\n0,8\n4,9\n");
  EXPECT_THAT(Names(film), ElementsAre("f9.jpg", "f11.jpg"));
  EXPECT_EQ(film.timesWithoutFrame, 2U);
  EXPECT_EQ(film.framesWithoutTime, 1U);
}

TEST_F(FilmTest, TakesTimestampsInTheOrderOfTheFrames) {
  MakeFrames({"1.jpg", "2.jpg", "3.jpg"});
  const Film film = WithTimes("# timecode format v2\n0\n33\n66.7\n100\n");
  ASSERT_THAT(Names(film), ElementsAre("1.jpg", "2.jpg", "3.jpg"));
  EXPECT_DOUBLE_EQ(film.frames[1].seconds, 0.033);
  EXPECT_DOUBLE_EQ(film.frames[2].seconds, 0.0667);
  EXPECT_EQ(film.timesWithoutFrame, 1U);
}

TEST_F(FilmTest, CountsFramesByTheNumbersInTheirNames) {
  MakeFrames({"f10.jpg", "f9.jpg", "f009b.jpg", "f1.jpg", "times.csv"});
  const Film film = ReadFilm(folder.Path(), 50);
  EXPECT_THAT(Names(film), ElementsAre("f1.jpg", "f9.jpg", "f009b.jpg", "f10.jpg"));
  EXPECT_DOUBLE_EQ(film.frames[3].seconds, 0.06);
}

TEST_F(FilmTest, SaysWhatIsWrong) {
  EXPECT_THROW(ReadFilm(folder.Path(), 25), InputError);
  EXPECT_THROW(ReadFilm(folder.Path() / "missing", 25), InputError);
  MakeFrames({"a.jpg"});
  EXPECT_THAT(ErrorOf("a.jpg,1\n"), HasSubstr("frame,time"));
  EXPECT_THAT(ErrorOf("frame,time\na.jpg,soon\n"), HasSubstr("line 2"));
  EXPECT_THAT(ErrorOf("frame,time\na.jpg\n"), HasSubstr("line 2"));
  EXPECT_THAT(ErrorOf("frame,time\nother.jpg,1\n"), HasSubstr("a.jpg"));
}

}  // namespace
}  // namespace trackedcam::host
