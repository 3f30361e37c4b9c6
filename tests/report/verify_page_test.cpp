#include "report/verify_page.h"

#include <stdexcept>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Two corners in the upper left sixteenth of the image's width, 3 and 5 pixels off.
Json Moved() {
  return Json::parse(R"({
    "answer": "cameraTrackerMoved", "message": "The tracker <b>moved</b>.", "details": ["By 5 mm."],
    "advice": "Fix it.", "imageSize": [1600, 900], "findings": [], "calibrated": "monday",
    "inputs": {"result": "/a/old.json", "data": "/a/new.csv"},
    "old": {"transformCamTc": [1,0,0,0.010, 0,1,0,0, 0,0,1,0, 0,0,0,1],
            "transformTrChart": [1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1],
            "lens": {"fx": 1000, "fy": 1000, "cx": 800, "cy": 450, "k1": 0, "k2": 0}},
    "new": {"transformCamTc": [1,0,0,0.0125, 0,1,0,0, 0,0,1,0, 0,0,0,1],
            "transformTrChart": [1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1],
            "lens": {"fx": 1000, "fy": 1000, "cx": 800, "cy": 450, "k1": 0, "k2": 0}},
    "photographs": [
      {"name": "a.jpg", "state": "used", "reason": null,
       "verified": {"oldPixels": 4.12, "newPixels": 0.31, "oldMm": 5.5, "oldDegrees": 0.25,
                    "corners": [[10, 10], [20, 20]],
                    "oldPredicted": [[13, 10], [20, 25]],
                    "newPredicted": [[10.5, 10], [20, 20.5]]}},
      {"name": "b.jpg", "state": "boardNotFound", "reason": "not sharp", "verified": null}]})");
}

TEST(VerifyPage, ShowsOldAndNewAndWhereTheCornersAreOff) {
  const std::string page = VerifyPage(Moved());
  EXPECT_THAT(page, AllOf(HasSubstr("class=\"answer wrong\""), HasSubstr("By 5 mm."),
                          HasSubstr("<td>10.00</td><td>12.50</td><td>2.50</td>"),
                          HasSubstr("<td>4.12</td><td>0.31</td><td>5.50</td><td>0.250</td>"),
                          HasSubstr("(not sharp)")));
  EXPECT_THAT(page, HasSubstr(">4.0</text>"));  // the mean of 3 and 5
  EXPECT_THAT(page, HasSubstr(">0.5</text>"));
  EXPECT_THAT(page, AllOf(HasSubstr("&lt;b&gt;moved"), Not(HasSubstr("<b>moved"))));
  EXPECT_THAT(page, Not(HasSubstr("<script")));
}

TEST(VerifyPage, ShowsNoChangeIfTheCalibrationHolds) {
  Json holds = Moved();
  holds["answer"] = "holds";
  holds["new"] = holds["old"];
  EXPECT_THAT(VerifyPage(holds),
              AllOf(HasSubstr("class=\"answer good\""), Not(HasSubstr("Old and new")),
                    HasSubstr(">4.0</text>"), Not(HasSubstr(">0.5</text>"))));
}

TEST(VerifyPage, IsDrawnFromAnyValues) {
  EXPECT_THAT(VerifyPage(Json::object()), HasSubstr("</html>"));
  EXPECT_THROW(VerifyPage(Json::array()), std::invalid_argument);
  Json broken = Moved();
  broken["imageSize"] = {0, 1e300};
  broken["photographs"][0]["verified"]["corners"] = {{1e300, "x"}, 7, nullptr};
  broken["photographs"].push_back(7);
  EXPECT_THAT(VerifyPage(broken), HasSubstr("</html>"));
  broken["imageSize"] = {1, 1e300};
  EXPECT_THAT(VerifyPage(broken), HasSubstr("</html>"));
}

}  // namespace
}  // namespace trackedcam::report
