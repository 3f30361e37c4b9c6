#include "host/result/result_file.h"

#include <fstream>
#include <stdexcept>

#include "host/input/input_error.h"
#include "host/text/json_file.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

struct Result {
  int code = 0;
  CalibrationOutputs outputs;
};

Result Parse(std::istream& file) {
  const auto json = nlohmann::json::parse(file);
  Result result;
  result.code = json.at("code").get<int>();
  if (IsUsable(result.code)) {
    result.outputs.normFocal = ReadNumbers(json, "normFocal", 2);
    result.outputs.normCenter = ReadNumbers(json, "normCenter", 2);
    result.outputs.transformCamTc = ReadNumbers(json, "transformCamTc", 16);
  }
  return result;
}

Result Read(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  try {
    return Parse(file);
  } catch (const std::exception& error) {
    throw InputError(path.u8string() + " is not the result of a calibration: " + error.what());
  }
}

}  // namespace

CalibrationOutputs ReadResult(const std::filesystem::path& path) {
  Result result = Read(path);
  if (!IsUsable(result.code)) {
    throw std::runtime_error(path.u8string() + " is of a calibration that failed, code " +
                             std::to_string(result.code) + ": " + VerdictOf(result.code).words);
  }
  return std::move(result.outputs);
}

}  // namespace trackedcam::host
