#include "report/page.h"

#include <regex>
#include <set>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "report/page_view.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

const Json kIdentity = {1, 0, 0, 0.01, 0, 1, 0, 0.02, 0, 0, 1, 0.03, 0, 0, 0, 1};

/// With something under every key that a page knows.
Json WholeResult() {
  const Json photograph = {{"photograph", "photos/a.jpg"},
                           {"used", true},
                           {"mm", 0.5},
                           {"degrees", 0.05},
                           {"predictedPixels", 1},
                           {"why", nullptr},
                           {"transformCamChart", kIdentity}};
  Json result = {
      {"code", 0},
      {"message", "No error"},
      {"imageSize", {1920, 1080}},
      {"normFocal", {1.35, 2.4}},
      {"normCenter", {0.5, 0.5}},
      {"distortion", {-0.1, 0.02, 0, 0, 0}},
      {"transformCamTc", kIdentity},
      {"fieldOfView", {40.6, 23.5}},
      {"focalLengthMm", {48.6}},
      {"lensErrorPixels", 0.07},
      {"reprojectionErrorPixels", 1.7},
      {"translationSpreadMetres", 0.0005},
      {"limits",
       {{"lensErrorPixels", {{"doubt", nullptr}, {"failure", 1.5}}},
        {"reprojectionErrorPixels", {{"doubt", 12.0}, {"failure", 18.0}}},
        {"translationSpreadMetres", {{"doubt", 0.01}, {"failure", 0.015}}}}},
      {"used", {"photos/a.jpg"}},
      {"dropped", {{{"photograph", "photos/b.jpg"}, {"reason", "board not found"}}}},
      {"exports", {{"engine", {{"code", 0}, {"title", "Engine"}, {"translationCm", {1, 2, 3}}}}}},
      {"log", "logs/log.txt"},
      {"images", {"logs/Reproject_photos/a.jpg"}},
      {"versions", {{"library", "1.2.3"}, {"program", "1.2.4"}}},
      {"photographs", {"photos/b.jpg", "photos/a.jpg"}},
      {"verdict",
       {{"level", "good"},
        {"words", "It is good."},
        {"advice", "Go on."},
        {"commands", {"do it"}}}},
      {"findings", {{{"id", "some"}, {"severity", "note"}, {"text", "A note."}}}},
      {"inputs",
       {{"data", "shoot/data.csv"},
        {"workingFolder", ""},
        {"board", {9, 6}},
        {"sensorMm", {36, 20.25}},
        {"squareMetres", 0.03},
        {"chartRotationDegrees", {12, -8, 5}},
        {"chartTranslationMetres", {0.1, -0.05, 0.02}},
        {"mountingReported",
         {{"rotationDegrees", {90, 0, 180}}, {"translationMetres", {-0.1, -0.02, 0.05}}}},
        {"mountingAxes", "fixed"}}},
      {"time", "2026-11-21 14:05:09"},
      {"crossCheck",
       {{"photographs", 1},
        {"used", 1},
        {"transformCamTc", kIdentity},
        {"transformTrChart", kIdentity},
        {"standardErrorCamTc", {{"shiftMm", {1, 2, 3}}, {"turnDegrees", {0.1, 0.2, 0.3}}}},
        {"t95", 2},
        {"lens", {{"fx", 0.5}}},
        {"mounting", {{"rotationDegrees", {12, -8, 5}}, {"translationMetres", {0.1, 0.2, 0.3}}}},
        {"mountingReported",
         {{"rotationDegrees", {91, 1, 181}}, {"translationMetres", {-0.1, -0.3, -0.2}}}},
        {"library", {{"offMm", 0.1}, {"offDegrees", 0.01}, {"p", 0.5}}},
        {"onScreen", {{{"distanceMetres", 1}, {"pixels", 2}}}},
        {"perPhotograph", {photograph}},
        {"suggestedViews", {{{"text", "Tilt it."}, {"tiltDegrees", 45}, {"gain", 1.29}}}},
        {"photographsToHalve", 35}}},
  };
  result["firstRun"] = result;
  return result;
}

std::string PageOf(const Json& result, const std::vector<Thumbnail>& thumbnails = {}) {
  return Page(result.dump(), thumbnails, "shoot");
}

/// What stands in front of the libraries.
std::string WordsOf(const std::string& page) {
  return page.substr(page.find("<body>"), page.find("<footer>") - page.find("<body>"));
}

TEST(Page, ShowsTheAnswer) {
  const std::string page = PageOf(WholeResult());
  for (const char* words :
       {"It is good.", "Go on.", "do it", "A note.", "10.00", "20.00", "30.00", "48.600", "± 2.00",
        "shoot/data.csv", "board not found", "Tilt it.", "1.29", "add about 35 photographs"}) {
    EXPECT_THAT(page, HasSubstr(words));
  }
  EXPECT_THAT(WordsOf(page), Not(HasSubstr("{{")));
}

TEST(Page, ShowsTheLimitsBesideTheErrors) {
  const std::string words = WordsOf(PageOf(WholeResult()));
  EXPECT_THAT(words, HasSubstr("solved to 0.070 px (limit 1.5)"));
  EXPECT_THAT(words, HasSubstr("at 1080 rows doubtful above 12.0, fails above 18.0"));
  EXPECT_THAT(words, HasSubstr("spread by 0.50 mm (limits 10 and 15)"));
  Json result = WholeResult();
  result.erase("limits");
  EXPECT_THAT(WordsOf(PageOf(result)),
              Not(AnyOf(HasSubstr("doubtful above"), HasSubstr("(limit"))));
}

TEST(Page, GivesTheMountingToPassOnInTheAxesInWhichItWasStated) {
  Json result = WholeResult();
  EXPECT_THAT(WordsOf(PageOf(result)),
              HasSubstr("<code>--chart-rotation=12,-8,5 --chart-translation=0.1,0.2,0.3</code>"));
  result["inputs"]["mountingAxes"] = "reported";
  EXPECT_THAT(WordsOf(PageOf(result)),
              HasSubstr("<code>--chart-rotation=91,1,181 --chart-translation=-0.1,-0.3,-0.2 "
                        "--mounting-axes=reported</code>"));
}

TEST(Page, LetsNothingRunButWhatTheProgramWasBuiltWith) {
  const std::string page = PageOf(WholeResult());
  std::smatch policy;
  ASSERT_TRUE(std::regex_search(page, policy,
                                std::regex("http-equiv=\"Content-Security-Policy\" "
                                           "content=\"([^\"]*)\"")));
  const std::string text = policy[1];
  EXPECT_THAT(text, HasSubstr("default-src &#39;none&#39;;"));
  EXPECT_THAT(text, Not(HasSubstr("unsafe")));
  EXPECT_THAT(text, Not(HasSubstr("http")));
  const std::regex hash("&#39;sha256-([A-Za-z0-9+/]{43}=)&#39;");
  std::set<std::string> hashes;
  for (std::sregex_iterator found(text.begin(), text.end(), hash), end; found != end; ++found) {
    hashes.insert((*found)[1]);
  }
  EXPECT_EQ(hashes.size(), 5);  // four scripts and a style
  EXPECT_LT(page.find("Content-Security-Policy"), page.find("<style>"));
}

TEST(Page, HoldsTheResultAsItWasWritten) {
  const std::string text = "{\n  \"code\": 4, \"message\": \"</script>\"}\n";
  const std::string page = Page("\xEF\xBB\xBF" + text, {}, "");
  EXPECT_THAT(page,
              HasSubstr("id=\"data\">{\n  \"code\": 4, \"message\": \"\\u003c/script>\"}\n<"));
}

TEST(Page, EscapesEveryText) {
  // Each text of the result in turn.
  const std::string hostile = "\"'><script>alert(1)</script>";
  const Json whole = WholeResult();
  const Json flat = whole.flatten();
  int texts = 0;
  for (const auto& [path, value] : flat.items()) {
    if (value.is_string()) {
      Json result = whole;
      result[Json::json_pointer(path)] = hostile;
      EXPECT_THAT(PageOf(result), Not(HasSubstr("<script>alert"))) << path;
      ++texts;
    }
  }
  EXPECT_GT(texts, 30);
}

TEST(Page, TakesAResultWithoutAnyOfItsKeys) {
  const Json whole = WholeResult();
  const Json flat = whole.flatten();
  for (const auto& [path, ignored] : flat.items()) {
    Json::json_pointer pointer(path);
    for (; !pointer.empty(); pointer.pop_back()) {
      Json result = whole;
      Json& parent = result[pointer.parent_pointer()];
      if (parent.is_object()) {
        parent.erase(pointer.back());
        EXPECT_NO_THROW(PageView(result, {}, "")) << "without " << pointer;
      }
    }
  }
}

TEST(Page, TakesAnyKindOfValueUnderAnyKey) {
  const Json whole = WholeResult();
  const Json flat = whole.flatten();
  const std::vector<Json> kinds = {nullptr,       false,        -1e300,           "text",
                                   Json::array(), {{"key", 1}}, {1, nullptr, "x"}};
  std::set<std::string> paths;
  for (const auto& [path, ignored] : flat.items()) {
    for (Json::json_pointer pointer(path); !pointer.empty(); pointer.pop_back()) {
      paths.insert(pointer.to_string());
    }
  }
  for (const std::string& path : paths) {
    for (const Json& kind : kinds) {
      if (path.rfind("/firstRun/", 0) != 0) {  // the same keys once more
        Json result = whole;
        result[Json::json_pointer(path)] = kind;
        EXPECT_NO_THROW(PageView(result, {}, "")) << path << " is " << kind;
      }
    }
  }
}

TEST(Page, OfAnOlderResultSaysThatItWasNotCrossChecked) {
  Json result = WholeResult();
  for (const char* key : {"verdict", "findings", "inputs", "time", "firstRun", "crossCheck"}) {
    result.erase(key);
  }
  const std::string words = WordsOf(PageOf(result));
  EXPECT_THAT(words, HasSubstr("Not cross-checked"));
  EXPECT_THAT(words, Not(HasSubstr("class=\"answer good\"")));
  EXPECT_THAT(words, Not(HasSubstr("id=\"scene\"")));
}

TEST(Page, OfAFailedRunIsRedWithoutAVerdictToo) {
  EXPECT_THAT(WordsOf(PageOf({{"code", 6}})), HasSubstr("Failed, code 6"));
  EXPECT_THAT(WordsOf(PageOf(Json::object())), HasSubstr("class=\"answer failed\""));
}

TEST(Page, KnowsNoOtherLevelThanItsOwn) {
  Json result = WholeResult();
  result["verdict"]["level"] = "excellent";
  EXPECT_THAT(WordsOf(PageOf(result)), HasSubstr("class=\"answer none\""));
}

TEST(Page, CountsPhotographsInTheOrderOfTheShoot) {
  const std::string page = PageOf(WholeResult());
  EXPECT_LT(page.find("data-number=\"1\" data-state=\"missing\""),
            page.find("data-number=\"2\" data-state=\"kept\""));
}

TEST(Page, KeepsBothRowsOfAPhotographThatIsNamedTwice) {
  Json result = WholeResult();
  Json second = result["crossCheck"]["perPhotograph"][0];
  second["predictedPixels"] = 77;
  result["crossCheck"]["perPhotograph"].push_back(second);
  result["photographs"] = {"photos/a.jpg", "photos/b.jpg", "photos/a.jpg"};
  const Json list = PageView(result, {}, "")["photographs"];
  ASSERT_EQ(list.size(), 3);
  EXPECT_EQ(list[0]["pixels"], "1.00");
  EXPECT_EQ(list[1]["photograph"], "photos/b.jpg");
  EXPECT_EQ(list[2]["pixels"], "77.00");
}

TEST(Page, LinksTheReprojectedImageWhereThereIsOne) {
  const std::string page = PageOf(WholeResult());
  EXPECT_THAT(page, HasSubstr("href=\"./../logs/Reproject_photos/a.jpg\""));
  EXPECT_THAT(page, HasSubstr("href=\"./../photos/b.jpg\""));
}

TEST(Page, EmbedsThumbnailsOfImagesOnly) {
  const std::string page = PageOf(WholeResult(), {{"photos/a.jpg", "\xFF\xD8\xFF"},
                                                  {"photos/b.jpg", "<svg onload='alert(1)'>"},
                                                  {"photos/of nowhere.jpg", "\x89PNG"}});
  EXPECT_THAT(page, HasSubstr("<img src=\"data:image/jpeg;base64,/9j/\""));
  EXPECT_THAT(page, Not(HasSubstr("data:image/svg")));
  EXPECT_THAT(page, Not(HasSubstr("base64,PHN2Z")));
  EXPECT_THAT(page, Not(HasSubstr("data:image/png")));
}

TEST(Page, Of40PhotographsIsSmallEnoughToSend) {
  Json result = WholeResult();
  result.erase("firstRun");
  Json& photographs = result["crossCheck"]["perPhotograph"];
  const Json first = photographs[0];
  photographs = Json::array();
  std::vector<Thumbnail> thumbnails;
  for (int i = 0; i < 40; ++i) {
    Json photograph = first;
    photograph["photograph"] = "photos/" + std::to_string(i) + ".jpg";
    photograph["corners"] = Json(54, {1234.56789012345, 1234.56789012345});
    photograph["predicted"] = photograph["corners"];
    photographs.push_back(photograph);
    thumbnails.push_back({photograph["photograph"], "\xFF\xD8\xFF" + std::string(24000, 'x')});
  }
  EXPECT_LT(Page(result.dump(2), thumbnails, "").size(), 3'000'000);
}

TEST(Page, RefusesWhatIsNoResult) {
  for (const char* text : {"", "[]", "1", "no JSON", "{\"code\": 1", "\xFF"}) {
    EXPECT_THROW(Page(text, {}, ""), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace trackedcam::report
