#include "report/result_text.h"

#include <stdexcept>

namespace trackedcam::report {

nlohmann::ordered_json ParseResult(const std::string& text) {
  try {
    nlohmann::ordered_json result = nlohmann::ordered_json::parse(text);
    if (result.is_object()) {
      return result;
    }
  } catch (const nlohmann::ordered_json::exception&) {
    // What it expected where helps nobody: a program wrote the file.
  }
  throw std::invalid_argument("The text is no result.");
}

}  // namespace trackedcam::report
