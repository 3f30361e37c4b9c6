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

struct Row {
  std::string name;
  const Json* figures;  // of the cross-check; null where it has none
  std::size_t place;    // of the figures in its list
};

/// A data file may name a photograph twice; each row has figures of its own.
std::vector<Row> RowsOf(const Json& result) {
  std::vector<Row> solved;
  for (const Json& photograph : ValueAt(result, "/crossCheck/perPhotograph")) {
    solved.push_back({TextAt(photograph, "/photograph"), &photograph, solved.size()});
  }
  std::vector<Row> rows;
  std::set<std::string> known;
  std::set<std::size_t> taken;
  for (const Json& value : ValueAt(result, "/photographs")) {
    if (value.is_string()) {
      const auto name = value.get<std::string>();
      const auto row = std::find_if(solved.begin(), solved.end(), [&](const Row& candidate) {
        return candidate.name == name && taken.count(candidate.place) == 0;
      });
      rows.push_back(row == solved.end() ? Row{name, nullptr, 0} : *row);
      if (row != solved.end()) {
        taken.insert(row->place);
      }
      known.insert(name);
    }
  }
  for (const Row& row : solved) {
    if (taken.count(row.place) == 0) {
      rows.push_back(row);
      known.insert(row.name);
    }
  }
  const auto addIfNew = [&](const Json& name) {
    if (name.is_string() && known.insert(name.get<std::string>()).second) {
      rows.push_back({name.get<std::string>(), nullptr, 0});
    }
  };
  for (const Json& name : ValueAt(result, "/used")) {
    addIfNew(name);
  }
  for (const Json& dropped : ValueAt(result, "/dropped")) {
    addIfNew(ValueAt(dropped, "/photograph"));
  }
  return rows;
}

/// Of the photographs that the library dropped, by name.
std::map<std::string, std::string> ReasonsOf(const Json& result) {
  std::map<std::string, std::string> reasons;
  for (const Json& dropped : ValueAt(result, "/dropped")) {
    reasons.emplace(TextAt(dropped, "/photograph"), TextAt(dropped, "/reason"));
  }
  return reasons;
}

/// The library names the image "Reproject_" and all of the photograph's path behind the last
/// backslash.
std::string ReprojectedImage(const Json& result, const std::string& photograph) {
  const std::string end = "Reproject_" + photograph.substr(photograph.find_last_of('\\') + 1);
  for (const Json& image : ValueAt(result, "/images")) {
    std::string path = image.is_string() ? image.get<std::string>() : std::string();
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
  const std::map<std::string, std::string> reasons = ReasonsOf(result);
  std::map<std::string, const Thumbnail*> thumbnailOf;
  for (const Thumbnail& thumbnail : thumbnails) {
    if (!ImageType(thumbnail.bytes).empty()) {
      thumbnailOf.emplace(thumbnail.photograph, &thumbnail);
    }
  }
  Json list = Json::array();
  for (const auto& [name, crossCheck, place] : RowsOf(result)) {
    const auto reason = reasons.find(name);
    const std::string state =
        StateOf(crossCheck, reason == reasons.end() ? nullptr : &reason->second);
    const std::string image = ReprojectedImage(result, name);
    Json photograph = {
        {"number", list.size() + 1},
        {"photograph", name},
        {"shortName", ShortName(name)},
        {"state", state},
        {state, true},
        {"reason", reason == reasons.end() ? "" : reason->second},
        {"link", LinkTo(image.empty() ? name : image, result, pageFolder)},
        {"isReprojected", !image.empty()},
    };
    if (crossCheck != nullptr) {
      photograph["place"] = place;
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
