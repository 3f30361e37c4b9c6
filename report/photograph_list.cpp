#include "report/photograph_list.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "report/number_text.h"
#include "report/text.h"

namespace trackedcam::report {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

struct InCrossCheck {
  std::size_t place;
  const Json* figures;
};

struct Names {
  std::vector<std::string> inOrder;
  std::map<std::string, InCrossCheck> inCrossCheck;
  std::map<std::string, std::string> reasons;  // of those that the library dropped
};

Names NamesOf(const Json& result) {
  Names names;
  std::set<std::string> known;
  const auto add = [&](const std::string& name) {
    if (!name.empty() && known.insert(name).second) {
      names.inOrder.push_back(name);
    }
  };
  const auto addAll = [&](const char* path) {
    for (const Json& name : ValueAt(result, path)) {
      add(name.is_string() ? name.get<std::string>() : std::string());
    }
  };
  addAll("/photographs");
  std::size_t place = 0;
  for (const Json& photograph : ValueAt(result, "/crossCheck/perPhotograph")) {
    const std::string name = TextAt(photograph, "/photograph");
    names.inCrossCheck.emplace(name, InCrossCheck{place++, &photograph});
    add(name);
  }
  addAll("/used");
  for (const Json& dropped : ValueAt(result, "/dropped")) {
    const std::string name = TextAt(dropped, "/photograph");
    names.reasons.emplace(name, TextAt(dropped, "/reason"));
    add(name);
  }
  return names;
}

/// The library names the image "Reproject_" and all of the photograph's path behind the last
/// backslash.
std::string ReprojectedImage(const Json& result, const std::string& photograph) {
  const std::string end = "Reproject_" + photograph.substr(photograph.find_last_of('\\') + 1);
  for (const Json& image : ValueAt(result, "/images")) {
    const std::string path = image.is_string() ? image.get<std::string>() : std::string();
    if (path.size() >= end.size() && path.compare(path.size() - end.size(), end.size(), end) == 0) {
      return path;
    }
  }
  return {};
}

std::string LinkTo(const std::string& path, const Json& result, const fs::path& pageFolder) {
  const fs::path working = fs::u8path(TextAt(result, "/inputs/workingFolder"));
  try {
    return FileLink(working / fs::u8path(path), pageFolder);
  } catch (const std::exception&) {
    return {};  // not every name can be a path on every system
  }
}

/// What the page's colours and words say about it.
const char* StateOf(const Json* crossCheck, const std::string* reason) {
  if (crossCheck == nullptr) {
    return reason == nullptr ? "kept" : "missing";
  }
  if (ValueAt(*crossCheck, "/used") == false) {
    return "apart";
  }
  return reason == nullptr ? "kept" : "spare";
}

std::string ShortName(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

}  // namespace

Json PhotographList(const Json& result, const std::vector<Thumbnail>& thumbnails,
                    const fs::path& pageFolder) {
  const Names names = NamesOf(result);
  std::map<std::string, const Thumbnail*> thumbnailOf;
  for (const Thumbnail& thumbnail : thumbnails) {
    if (!ImageType(thumbnail.bytes).empty()) {
      thumbnailOf.emplace(thumbnail.photograph, &thumbnail);
    }
  }
  Json list = Json::array();
  for (const std::string& name : names.inOrder) {
    const auto found = names.inCrossCheck.find(name);
    const Json* crossCheck = found == names.inCrossCheck.end() ? nullptr : found->second.figures;
    const auto reason = names.reasons.find(name);
    const std::string state =
        StateOf(crossCheck, reason == names.reasons.end() ? nullptr : &reason->second);
    const std::string image = ReprojectedImage(result, name);
    Json photograph = {
        {"number", list.size() + 1},
        {"photograph", name},
        {"shortName", ShortName(name)},
        {"state", state},
        {state, true},
        {"reason", reason == names.reasons.end() ? "" : reason->second},
        {"link", LinkTo(image.empty() ? name : image, result, pageFolder)},
        {"isReprojected", !image.empty()},
    };
    if (crossCheck != nullptr) {
      photograph["place"] = found->second.place;
      photograph["hasFigures"] = true;
      photograph["millimetres"] = Fixed(NumberAt(*crossCheck, "/mm"), 2);
      photograph["degrees"] = Fixed(NumberAt(*crossCheck, "/degrees"), 3);
      photograph["pixels"] = Fixed(NumberAt(*crossCheck, "/predictedPixels"), 2);
      photograph["why"] = TextAt(*crossCheck, "/why");
    }
    const auto thumbnail = thumbnailOf.find(name);
    if (thumbnail != thumbnailOf.end()) {
      const std::string& bytes = thumbnail->second->bytes;
      photograph["thumbnail"] =
          "data:" + std::string(ImageType(bytes)) + ";base64," + Base64(bytes);
    }
    list.push_back(photograph);
  }
  return list;
}

}  // namespace trackedcam::report
