#include "host/text/json_file.h"

#include <cmath>
#include <stdexcept>

namespace trackedcam::host {

using Json = nlohmann::ordered_json;

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
