#include "host/result/own_files.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <system_error>

#include "host/text/file_text.h"
#include "host/text/json_file.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr std::size_t kHead = 4096;

// Nothing for what is no JSON object. A file that begins otherwise is not read.
std::optional<Json> ReadObject(const fs::path& file) {
  if (BeginningOf(file, 1) != "{") {
    return std::nullopt;
  }
  try {
    auto json = ReadJson<Json>(file);
    return json.is_object() ? std::optional<Json>(std::move(json)) : std::nullopt;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool HasAll(const Json& json, std::initializer_list<const char*> keys) {
  return std::all_of(keys.begin(), keys.end(), [&](const char* key) { return json.contains(key); });
}

}  // namespace

std::string BeginningOf(const fs::path& file, std::size_t count) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) {
    return {};
  }
  std::ifstream stream(file, std::ios::binary);
  std::string bytes(count, '\0');
  stream.read(bytes.data(), static_cast<std::streamsize>(count));
  bytes.resize(static_cast<std::size_t>(stream.gcount()));
  return bytes;
}

bool IsResultFile(const fs::path& file) {
  const auto json = ReadObject(file);
  return json && HasAll(*json, {"code", "message", "normFocal", "transformCamTc", "versions"});
}

bool IsReportPage(const fs::path& file) {
  return BeginningOf(file, kHead).find(R"(<meta name="generator" content="trackedcam">)") !=
         std::string::npos;
}

bool IsLensFile(const fs::path& file) {
  const auto json = ReadObject(file);
  // Those of other programs are of the same form, but hardly to the last blank.
  return json && json->value("/metadata/type"_json_pointer, "") == "LensFile" &&
         json->value("/metadata/lensInfo/serialNumber"_json_pointer, "none").empty() &&
         json->value("/metadata/userMetadata"_json_pointer, Json()).empty() &&
         JsonText(*json) == ReadFile(file);
}

bool IsTruthFile(const fs::path& file) {
  const auto json = ReadObject(file);
  return json && HasAll(*json, {"seed", "lensPixels", "transformCamTc", "mounting", "photographs"});
}

}  // namespace trackedcam::host
