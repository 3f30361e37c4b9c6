#include "host/text/json_file.h"

#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <system_error>

#include "host/text/file_text.h"

namespace trackedcam::host {

using Json = nlohmann::ordered_json;

namespace {

constexpr std::uintmax_t kMostBytes = 64 << 20;
constexpr int kDeepest = 100;

}  // namespace

template <class Parsed>
Parsed ParseJson(const std::string& text) {
  const auto requireShallow = [](int depth, auto /*event*/, auto& /*parsed*/) {
    if (depth > kDeepest) {
      throw std::runtime_error("it is nested too deep");
    }
    return true;
  };
  return Parsed::parse(text, requireShallow);
}

template <class Parsed>
Parsed ReadJson(const std::filesystem::path& file) {
  std::error_code error;
  if (std::filesystem::file_size(file, error) > kMostBytes || error) {
    throw std::runtime_error(error ? "cannot read " + file.u8string() : "it is too large");
  }
  return ParseJson<Parsed>(ReadFile(file));
}

template nlohmann::json ParseJson(const std::string& text);
template nlohmann::ordered_json ParseJson(const std::string& text);
template nlohmann::json ReadJson(const std::filesystem::path& file);
template nlohmann::ordered_json ReadJson(const std::filesystem::path& file);

std::vector<double> ReadNumbers(const nlohmann::json& json, const char* key, std::size_t count) {
  auto numbers = json.at(key).get<std::vector<double>>();
  if (numbers.size() != count) {
    throw std::invalid_argument(std::string(key) + " has the wrong length");
  }
  return numbers;
}

Json NumberJson(const std::optional<double>& number) {
  return number && std::isfinite(*number) ? Json(*number) : Json(nullptr);
}

Json NumbersJson(const std::vector<double>& numbers) {
  Json list = Json::array();
  for (const double number : numbers) {
    list.push_back(NumberJson(number));
  }
  return list;
}

std::string JsonText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace trackedcam::host
