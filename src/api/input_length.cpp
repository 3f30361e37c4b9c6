#include "api/input_length.h"

namespace trackedcam {

ResultCode CheckLength(const RunLog& log, const std::string& argument,
                       const std::vector<double>& elements, std::size_t needed) {
  if (elements.size() < needed) {
    WriteRunLogLine(log, argument + " has " + std::to_string(elements.size()) +
                             " elements, needs " + std::to_string(needed) + ".");
    return result::kInputTooShort;
  }
  return result::kSuccess;
}

}  // namespace trackedcam
