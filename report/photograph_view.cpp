#include "report/photograph_view.h"

#include <cmath>
#include <string>

#include <nlohmann/json.hpp>

#include "report/html.h"
#include "report/result_values.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

std::string StateOf(const Json& photograph) {
  const std::string state = TextAt(photograph, "/state");
  if (state == "leftOutByCrossCheck") {
    return "out";
  }
  if (ValueAt(photograph, "/crossCheck/used") == false) {
    return "apart";
  }
  if (state == "used") {
    return "kept";
  }
  if (state == "leftOutByFilter") {
    return "spare";
  }
  return state == "notReached" || state == "notUsed" || state == "unknown" ? "unused" : "missing";
}

std::string LinkTo(const std::string& path, const fs::path& pageFolder) {
  try {
    return path.empty() ? "" : FileLink(fs::u8path(path), pageFolder);
  } catch (const std::exception&) {
    return {};  // not every name is a path on every system
  }
}

std::string ImageLink(const Json& photograph, const fs::path& pageFolder) {
  const std::string reprojected = TextAt(photograph, "/reprojectedImage");
  return LinkTo(reprojected.empty() ? TextAt(photograph, "/path") : reprojected, pageFolder);
}

// Those that a calibration could take.
bool CanBeLeftOut(const std::string& state) {
  return state != "missing" && state != "out";
}

// From here on, corners by the result and by the cross-check are seen to differ.
constexpr double kPixelsThatShow = 0.25;

/// @param check What the cross-check says about the photograph.
Json PhotographView(const Json& photograph, const Json& check, const Thumbnail& thumbnail,
                    const fs::path& pageFolder) {
  const std::string name = TextAt(photograph, "/name");
  const std::string state = StateOf(photograph);
  const std::string type(ImageType(thumbnail.bytes));
  const auto pixels = NumberAt(check, "/resultPixels");
  const auto pixelsOfCheck = NumberAt(check, "/predictedPixels");
  const bool areApart =
      pixels && pixelsOfCheck && std::abs(*pixels - *pixelsOfCheck) > kPixelsThatShow;
  return {{"row", Fixed(NumberAt(photograph, "/row"), 0)},
          {"name", name},
          {"shortName", ShortName(name)},
          {"state", state},
          {state, true},
          {"reason", TextAt(photograph, "/reason")},
          {"link", ImageLink(photograph, pageFolder)},
          {"original", LinkTo(TextAt(photograph, "/path"), pageFolder)},
          {"thumbnail", type.empty() ? "" : "data:" + type + ";base64," + Base64(thumbnail.bytes)},
          {"isReprojected", !type.empty() && thumbnail.isReprojected},
          {"isChecked", check.is_object()},
          {"millimetres", Fixed(NumberAt(check, "/mm"), 2)},
          {"degrees", Fixed(NumberAt(check, "/degrees"), 3)},
          {"pixels", Fixed(pixels ? pixels : pixelsOfCheck, 2)},
          {"pixelsOfCheck", areApart ? Json(Fixed(pixelsOfCheck, 2)) : Json()}};
}

}  // namespace

// A log alone, without the data, cannot be calibrated again.
bool CanBeRepeated(const Json& result) {
  return !TextAt(result, "/log").empty() && !TextAt(result, "/inputs/data").empty();
}

Json PhotographViews(const Json& result, const std::vector<Thumbnail>& thumbnails,
                     const fs::path& pageFolder) {
  const Thumbnail none;
  Json list = Json::array();
  for (const Json& photograph : ValueAt(result, "/photographs")) {
    const std::size_t place = list.size();
    // A photograph that was left out of this run was checked in the first.
    const Json& check = TextAt(photograph, "/state") == "leftOutByCrossCheck"
                            ? ValueAt(result, At("/firstRun/photographs", place) + "/crossCheck")
                            : ValueAt(photograph, "/crossCheck");
    list.push_back(PhotographView(
        photograph, check, place < thumbnails.size() ? thumbnails[place] : none, pageFolder));
    list.back()["number"] = place + 1;
    list.back()["canBeLeftOut"] =
        CanBeRepeated(result) && CanBeLeftOut(list.back()["state"].get<std::string>());
  }
  return list;
}

}  // namespace trackedcam::report
