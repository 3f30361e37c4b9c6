#include "report/page.h"

#include <filesystem>
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
using testing::HasSubstr;
using testing::Not;

const Json kIdentity = {1, 0, 0, 0.01, 0, 1, 0, 0.02, 0, 0, 1, 0.03, 0, 0, 0, 1};

Json Photograph(int row, const std::string& name, const std::string& state) {
  return {{"row", row},
          {"name", name},
          {"path", std::filesystem::absolute(name).generic_u8string()},
          {"state", state},
          {"reason", nullptr},
          {"libraryErrorPixels", 0.5},
          {"reprojectedImage", nullptr},
          {"crossCheck", nullptr}};
}

Json CheckedPhotograph(double predictedPixels = 1) {
  return {{"used", true},
          {"mm", 0.5},
          {"degrees", 0.05},
          {"predictedPixels", predictedPixels},
          {"transformCamChart", kIdentity}};
}

Json Axes(double other, double half) {
  Json axes = Json::array();
  for (const char* axis : {"x", "y", "z"}) {
    other += 10;
    axes.push_back({{"axis", axis},
                    {"other", other},
                    {"found", other + 0.25},
                    {"difference", -0.25},
                    {"half", half}});
  }
  return axes;
}

/// With something under every key that a page knows.
Json WholeResult() {
  Json unusable = Photograph(2, "photos/b.jpg", "boardNotFound");
  unusable["reason"] = "board not found";
  Json used = Photograph(3, "photos/a.jpg", "used");
  used["reprojectedImage"] = std::filesystem::absolute("logs/Reproject_photos/a.jpg").u8string();
  used["crossCheck"] = CheckedPhotograph();
  const Json comparison = {
      {"translation", Axes(0, 2.5)}, {"rotation", Axes(100, 0.35)}, {"isCompared", true}};
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
      {"exports",
       {{"engine",
         {{"code", 0}, {"title", "Engine"}, {"cameraAxes", {"x"}}, {"translationCm", {1, 2, 3}}}}}},
      {"log", "logs/log.txt"},
      {"versions", {{"library", "1.2.3"}, {"program", "1.2.4"}}},
      {"photographs", {unusable, used}},
      {"verdict",
       {{"level", "good"},
        {"message", "It is good."},
        {"advice", "Go on."},
        {"commands", {"do it"}}}},
      {"findings",
       {{{"id", "some"}, {"severity", "note"}, {"text", "A note."}, {"advice", "Note it."}}}},
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
      {"seconds", {{"library", 5.312}, {"crossCheck", 0.42}, {"page", nullptr}}},
      {"crossCheck",
       {{"photographs", 1},
        {"used", 1},
        {"transformCamTc", kIdentity},
        {"transformTrChart", kIdentity},
        {"t95", 2},
        {"comparison", {{"camTc", comparison}, {"trChart", comparison}}},
        {"lens", {{"fx", 0.5}}},
        {"mounting", {{"rotationDegrees", {12, -8, 5}}, {"translationMetres", {0.1, 0.2, 0.3}}}},
        {"mountingReported",
         {{"rotationDegrees", {91, 1, 181}}, {"translationMetres", {-0.1, -0.3, -0.2}}}},
        {"nominalMounting",
         {{"offMm", 0.3},
          {"offDegrees", 0.02},
          {"p", 0.0001},
          {"isCertain", true},
          {"certaintyText", "certain"},
          {"likelyMistakeText", "an angle has the wrong sign"}}},
        {"library",
         {{"offMm", 0.1},
          {"offDegrees", 0.01},
          {"p", 0.5},
          {"isCertain", false},
          {"certaintyText", "may be chance (p = 0.50)"}}},
        {"onScreen", {{{"distanceMetres", 1}, {"middle", {{"pixels", 2}, {"mm", 1.5}}}}}},
        {"suggestedViews", {{{"text", "Tilt it."}, {"tiltDegrees", 45}, {"gain", 1.29}}}},
        {"photographsToHalve", 35},
        {"scale",
         {{"uncertainty", 0.001}, {"mmPerPermille", 0.72}, {"degreesPerPermille", 0.01}}}}},
  };
  result["firstRun"] = result;
  return result;
}

Json PhotographsOf(const Json& result) {
  return PageView(result, {}, "")["photographs"];
}

std::string PageOf(const Json& result, const std::vector<Thumbnail>& thumbnails = {}) {
  return Page(result, thumbnails, "shoot");
}

/// The part in front of the script libraries.
std::string BodyOf(const std::string& page) {
  return page.substr(page.find("<body>"), page.find("<footer>") - page.find("<body>"));
}

TEST(Page, ShowsTheAnswer) {
  const std::string page = PageOf(WholeResult());
  for (const char* text :
       {"It is good.", "Go on.", "do it", "A note.", "Note it.", "10.00", "20.00", "30.00",
        "48.600", "± 2.50", "shoot/data.csv", "library 5.31 s, cross-check 0.42 s</td>",
        "board not found", "Tilt it.", "1.29", "35"}) {
    EXPECT_THAT(page, HasSubstr(text));
  }
  EXPECT_THAT(BodyOf(page), Not(HasSubstr("{{")));
}

TEST(Page, ShowsTheLimitsNextToTheErrors) {
  const std::string body = BodyOf(PageOf(WholeResult()));
  for (const char* limit : {"1.5", "12.0", "18.0", "10", "15"}) {
    EXPECT_THAT(body, HasSubstr(std::string("<span class=\"limit\">") + limit + "</span>"));
  }
  Json result = WholeResult();
  result.erase("limits");
  EXPECT_THAT(BodyOf(PageOf(result)), Not(HasSubstr("class=\"limit\"")));
}

TEST(Page, ShowsTheComparisonAsTheResultHasIt) {
  const Json view = PageView(WholeResult(), {}, "");
  for (const char* transform : {"camTc", "trChart"}) {
    const Json& y = view["crossCheck"][transform]["translation"][1];
    EXPECT_EQ(y["axis"], "y");
    EXPECT_EQ(y["other"], "20.00");
    EXPECT_EQ(y["found"], "20.25");
    EXPECT_EQ(y["difference"], "\u22120.25");
    EXPECT_EQ(y["half"], "2.50");
    EXPECT_EQ(view["crossCheck"][transform]["rotation"][2]["half"], "0.350");
  }
}

TEST(Page, ShowsUnknownValuesOfTheComparisonAsDashes) {
  Json result = WholeResult();
  Json& axis = result["crossCheck"]["comparison"]["trChart"]["translation"][0];
  axis["other"] = axis["difference"] = nullptr;
  axis["half"] = 0.00123;
  const Json view = PageView(result, {}, "")["crossCheck"]["trChart"]["translation"][0];
  EXPECT_EQ(view["other"], "\u2013");
  EXPECT_EQ(view["difference"], "\u2013");
  EXPECT_EQ(view["half"], "0.0012");
}

TEST(Page, NamesTheLikelyMistake) {
  Json result = WholeResult();
  result.erase("firstRun");
  EXPECT_THAT(BodyOf(PageOf(result)), HasSubstr("wrong sign"));
  result["crossCheck"]["nominalMounting"]["likelyMistakeText"] = nullptr;
  EXPECT_THAT(BodyOf(PageOf(result)), Not(HasSubstr("Likely mistake")));
}

TEST(Page, OfASecondRunComparesNoStatedMounting) {
  Json result = WholeResult();
  const std::string offset = "0.30 mm and 0.020";
  EXPECT_THAT(BodyOf(PageOf(result)), Not(HasSubstr(offset)));
  result["firstRun"] = nullptr;
  EXPECT_THAT(BodyOf(PageOf(result)), HasSubstr(offset));
}

TEST(Page, GivesTheMountingFoundInTheAxesInWhichItWasStated) {
  Json result = WholeResult();
  EXPECT_THAT(BodyOf(PageOf(result)),
              HasSubstr("<code>--chart-rotation=12,-8,5 --chart-translation=0.1,0.2,0.3</code>"));
  result["inputs"]["mountingAxes"] = "reported";
  EXPECT_THAT(BodyOf(PageOf(result)),
              HasSubstr("<code>--chart-rotation=91,1,181 --chart-translation=-0.1,-0.3,-0.2 "
                        "--mounting-axes=reported</code>"));
}

TEST(Page, LetsOnlyItsOwnScriptsRun) {
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

TEST(Page, ContainsTheResult) {
  const std::string page = PageOf({{"code", 4}, {"message", "</script>\xFF"}});
  EXPECT_THAT(page, HasSubstr("id=\"data\">{\"code\":4,"
                              "\"message\":\"\\u003c/script>\xEF\xBF\xBD\"}<"));
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

TEST(Page, OfAResultWithoutAVerdictSaysThatItWasNotCrossChecked) {
  Json result = WholeResult();
  for (const char* key : {"verdict", "findings", "inputs", "time", "firstRun", "crossCheck"}) {
    result.erase(key);
  }
  const std::string body = BodyOf(PageOf(result));
  EXPECT_THAT(body, HasSubstr("class=\"answer none\""));
  EXPECT_THAT(body, Not(HasSubstr("class=\"answer good\"")));
  EXPECT_THAT(body, Not(HasSubstr("id=\"scene\"")));
}

TEST(Page, OfAFailedRunIsRedWithoutAVerdictToo) {
  EXPECT_THAT(BodyOf(PageOf({{"code", 6}})), HasSubstr("code 6"));
  EXPECT_THAT(BodyOf(PageOf(Json::object())), HasSubstr("class=\"answer failed\""));
}

TEST(Page, ShowsAnUnknownLevelAsNotCrossChecked) {
  Json result = WholeResult();
  result["verdict"]["level"] = "excellent";
  EXPECT_THAT(BodyOf(PageOf(result)), HasSubstr("class=\"answer none\""));
}

TEST(Photographs, AreNumberedByTheirPlaceInTheList) {
  const std::string page = PageOf(WholeResult());
  EXPECT_LT(page.find("data-number=\"1\" data-state=\"missing\""),
            page.find("data-number=\"2\" data-state=\"kept\""));
}

TEST(Photographs, OfOneNameAreTwo) {
  Json result = WholeResult();
  Json first = Photograph(2, "photos/a.jpg", "used");
  first["crossCheck"] = CheckedPhotograph(1);
  Json second = Photograph(4, "photos/a.jpg", "leftOutByFilter");
  second["crossCheck"] = CheckedPhotograph(77);
  result["photographs"] = {first, Photograph(3, "photos/b.jpg", "notLoaded"), second};
  const Json list = PhotographsOf(result);
  ASSERT_EQ(list.size(), 3);
  EXPECT_EQ(list[0]["pixels"], "1.00");
  EXPECT_EQ(list[0]["state"], "kept");
  EXPECT_EQ(list[1]["name"], "photos/b.jpg");
  EXPECT_EQ(list[2]["pixels"], "77.00");
  EXPECT_EQ(list[2]["state"], "spare");
  EXPECT_EQ(list[2]["row"], "4");
}

TEST(Photographs, HaveAStateOnThePageForEachInTheResult) {
  Json result = WholeResult();
  const std::pair<const char*, const char*> states[] = {
      {"used", "kept"},
      {"leftOutByFilter", "spare"},
      {"leftOutByCrossCheck", "out"},
      {"boardNotFound", "missing"},
      {"notLoaded", "missing"},
      {"leftOutBeforeTheRun", "missing"},
      {"notReached", "unused"},
      {"notUsed", "unused"},
  };
  for (const auto& [state, onPage] : states) {
    result["photographs"] = Json::array({Photograph(2, "a.jpg", state)});
    EXPECT_EQ(PhotographsOf(result)[0]["state"], onPage) << state;
  }
  for (const char* state : {"used", "leftOutByFilter"}) {
    result["photographs"][0]["state"] = state;
    result["photographs"][0]["crossCheck"] = {{"used", false}};
    EXPECT_EQ(PhotographsOf(result)[0]["state"], "apart") << state;
  }
}

TEST(Uncertainty, SaysWhatAnErrorOfTheLengthsDoes) {
  EXPECT_THAT(
      BodyOf(PageOf(WholeResult())),
      HasSubstr("an error of the lengths of 0.10 %, of squares against trackers. Each 0.1 % "
                "adds 0.7 mm and 0.01° to the transform."));
}

// Its values would be typed into an engine.
TEST(Uncertainty, SaysWhetherTheRowsShowADelay) {
  const auto delayOf = [](const Json& knownToMs) {
    Json result = WholeResult();
    result["crossCheck"]["solved"] = true;
    result["crossCheck"]["delayKnownToMs"] = knownToMs;
    const Json view = PageView(result, {}, "")["crossCheck"];
    return std::make_pair(view["delaySeen"], view["isDelayUnseen"]);
  };
  EXPECT_EQ(delayOf(12.4), std::make_pair(Json("12"), Json(false)));
  EXPECT_EQ(delayOf(nullptr), std::make_pair(Json(), Json(true)));
}

TEST(Answer, OffersNothingToCopyOfAResultThatIsWrong) {
  Json result = WholeResult();
  EXPECT_THAT(BodyOf(PageOf(result)), HasSubstr("Copy the 16 numbers"));
  EXPECT_THAT(BodyOf(PageOf(result)), HasSubstr("<h3>Exports</h3>"));
  result["verdict"]["level"] = "wrong";
  const std::string wrong = BodyOf(PageOf(result));
  EXPECT_THAT(wrong, testing::Not(HasSubstr("Copy the 16 numbers")));
  EXPECT_THAT(wrong, testing::Not(HasSubstr("<h3>Exports</h3>")));
}

// In the words of the result file, which are those of the terminal.
TEST(Answer, SaysWhatIsCertainInTheWordsOfTheResult) {
  Json result = WholeResult();
  result["firstRun"] = nullptr;
  result["verdict"]["level"] = "wrong";
  const std::string wrong = BodyOf(PageOf(result));
  EXPECT_THAT(wrong, HasSubstr("Differs from the cross-check by 0.10 mm and 0.010°: may be chance "
                               "(p = 0.50).</p>"));
  EXPECT_THAT(wrong,
              HasSubstr("<strong class=\"bad\">Stated and found differ by 0.30 mm and 0.020°: "
                        "certain.</strong>"));
  result["crossCheck"]["library"]["p"] = nullptr;
  EXPECT_THAT(BodyOf(PageOf(result)), HasSubstr("Differs from the cross-check: may be chance"));
  result["verdict"]["level"] = "good";
  EXPECT_THAT(BodyOf(PageOf(result)), Not(HasSubstr("<strong class=\"bad\">Stated and found")));
}

TEST(Photographs, AreNotCountedIfTheLogIsIncomplete) {
  Json result = WholeResult();
  result["photographs"][1]["state"] = "unknown";
  EXPECT_EQ(PageView(result, {}, "")["lastRun"]["used"], "?");
  EXPECT_EQ(PhotographsOf(result)[1]["state"], "unused");
}

TEST(Photographs, SayWhatBecameOfTheOthers) {
  Json result = WholeResult();
  result["photographCounts"] = {{"others", "8 left out because they contradict the others"}};
  EXPECT_THAT(BodyOf(PageOf(result)),
              HasSubstr("8 left out because they contradict the others</p>"));
}

TEST(Answer, NamesTheMountingByWhereItIsFrom) {
  Json result = WholeResult();
  result["firstRun"] = nullptr;
  result["inputs"]["chartRotationDegrees"] = {1, 2, 3};
  EXPECT_EQ(PageView(result, {}, "")["mounting"]["name"], "stated");
  result["inputs"]["chartRotationDegrees"] = nullptr;
  EXPECT_EQ(PageView(result, {}, "")["mounting"]["name"], "");
  EXPECT_THAT(BodyOf(PageOf(result)), Not(HasSubstr("as stated")));
}

TEST(Photographs, LeftOutOfTheSecondRunKeepTheirPlaceAndReason) {
  Json result = WholeResult();
  Json first = Json::array();
  Json second = Json::array();
  for (int i = 0; i < 40; ++i) {
    Json photograph =
        Photograph(i + 2, "photos/" + std::to_string(i + 1) + ".jpg", "leftOutByFilter");
    photograph["crossCheck"] = CheckedPhotograph(i + 1);
    const bool isBad = i % 5 == 2;
    photograph["crossCheck"]["used"] = !isBad;
    if (isBad) {
      photograph["reason"] = "fits the trackers of photographs nearby";
    }
    first.push_back(photograph);
    photograph["state"] = isBad ? "leftOutByCrossCheck" : "used";
    photograph["crossCheck"] = isBad ? Json(nullptr) : CheckedPhotograph(0.25);
    second.push_back(photograph);
  }
  result["firstRun"]["photographs"] = first;
  result["photographs"] = second;
  const Json view = PageView(result, {}, "");
  ASSERT_EQ(view["photographs"].size(), 40);
  EXPECT_EQ(view["photographCount"], 40);
  EXPECT_EQ(view["lastRun"]["used"], "32");
  EXPECT_EQ(view["firstRun"]["used"], "0");
  ASSERT_EQ(view["disagreeing"].size(), 8);
  const Json& left = view["photographs"][37];
  EXPECT_EQ(left["number"], 38);
  EXPECT_EQ(left["name"], "photos/38.jpg");
  EXPECT_EQ(left["row"], "39");
  EXPECT_EQ(left["state"], "out");
  EXPECT_EQ(left["reason"], "fits the trackers of photographs nearby");
  EXPECT_EQ(left["pixels"], "38.00");  // of the first run
  EXPECT_EQ(view["photographs"][38]["number"], 39);
  EXPECT_EQ(view["photographs"][38]["pixels"], "0.25");
  const std::string body = BodyOf(PageOf(result));
  for (int number = 1; number <= 40; ++number) {
    EXPECT_THAT(body, HasSubstr("data-number=\"" + std::to_string(number) + '"'));
  }
}

TEST(Photographs, LinkTheReprojectedImageOrElseThePhotograph) {
  const std::string page = PageOf(WholeResult());
  EXPECT_THAT(page, HasSubstr("href=\"./../logs/Reproject_photos/a.jpg\""));
  EXPECT_THAT(page, HasSubstr("href=\"./../photos/b.jpg\""));
}

TEST(Photographs, HaveThumbnailsOfImagesOnly) {
  const Thumbnail image = {"\xFF\xD8\xFF", true};
  const Thumbnail noImage = {"<svg onload='alert(1)'>", true};
  const Thumbnail beyond = {"\x89PNG", false};
  const std::string page = PageOf(WholeResult(), {noImage, image, beyond});
  EXPECT_THAT(page, HasSubstr("<img src=\"data:image/jpeg;base64,/9j/\""));
  EXPECT_THAT(page, Not(HasSubstr("data:image/svg")));
  EXPECT_THAT(page, Not(HasSubstr("base64,PHN2Z")));
  EXPECT_THAT(page, Not(HasSubstr("data:image/png")));
  const Json list = PageView(WholeResult(), {noImage, image}, "")["photographs"];
  EXPECT_EQ(list[0]["isReprojected"], false);
  EXPECT_EQ(list[1]["isReprojected"], true);
}

TEST(Photographs, WithoutReprojectedThumbnailGetTheirCornersDrawn) {
  const std::string body =
      BodyOf(PageOf(WholeResult(), {{"\xFF\xD8\xFF", false}, {"\xFF\xD8\xFF", true}}));
  EXPECT_THAT(body, HasSubstr("data-state=\"missing\" data-reprojected=\"\""));
  EXPECT_THAT(body, HasSubstr("data-state=\"kept\" data-reprojected=\"true\""));
}

TEST(Page, Of40PhotographsIsSmallEnoughToSend) {
  Json result = WholeResult();
  result.erase("firstRun");
  result["photographs"] = Json::array();
  std::vector<Thumbnail> thumbnails;
  for (int i = 0; i < 40; ++i) {
    Json photograph = Photograph(i + 2, "photos/" + std::to_string(i) + ".jpg", "used");
    photograph["crossCheck"] = CheckedPhotograph();
    photograph["crossCheck"]["corners"] = Json(54, {1234.56789012345, 1234.56789012345});
    photograph["crossCheck"]["predicted"] = photograph["crossCheck"]["corners"];
    result["photographs"].push_back(photograph);
    thumbnails.push_back({"\xFF\xD8\xFF" + std::string(24000, 'x'), true});
  }
  EXPECT_LT(Page(result, thumbnails, "").size(), 3'000'000);
}

TEST(Page, TakesAResultNestedDeeply) {
  const Json nested = Json::parse(std::string(90, '[') + std::string(90, ']'));
  const Json result = {{"photographs", nested}, {"exports", {{"a", {{"cameraAxes", nested}}}}}};
  EXPECT_NO_THROW(PageOf(result));
}

TEST(Page, RejectsWhatIsNotAResult) {
  for (const char* text : {"null", "[]", "1"}) {
    EXPECT_THROW(PageOf(Json::parse(text)), std::invalid_argument) << text;
  }
}

TEST(Page, ShowsAPhotographWithoutDistortion) {
  UndistortedPhotograph undistorted;
  EXPECT_THAT(Page(WholeResult(), {}, "/pages", undistorted), Not(HasSubstr("id=\"undistorted\"")));
  undistorted.bytes = "\xff\xd8";
  undistorted.place = 1;
  undistorted.size = {1000, 562};
  undistorted.lines = {{1.5, 2, 3, 4}, {5, 6, 7, 8}};
  const std::string page = Page(WholeResult(), {}, "/pages", undistorted);
  EXPECT_THAT(page, HasSubstr("src=\"data:image/jpeg;base64,/9g=\" width=\"1000\" height=\"562\""));
  EXPECT_THAT(page, HasSubstr("viewBox=\"0 0 1000 562\""));
  EXPECT_THAT(
      page, HasSubstr("<line x1=\"1.5\" y1=\"2.0\" x2=\"3.0\" y2=\"4.0\"></line><line x1=\"5.0\""));
  EXPECT_THAT(page, HasSubstr("Photograph 2, in which the chart"));
}

TEST(Page, LeavesOutFilesOfOtherPrograms) {
  Json result = WholeResult();
  const auto engines = [&] { return PageView(result, {}, "/pages")["engines"].size(); };
  const std::size_t before = engines();
  result["exports"]["opencv"] = {{"code", 0}, {"format", "opencv"}, {"text", "%YAML:1.0"}};
  EXPECT_EQ(engines(), before);
}

}  // namespace
}  // namespace trackedcam::report
