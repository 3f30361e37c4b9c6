// The result file: accepted by the exports and by the page, or refused with a message.

#include <cmath>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "fuzz/fuzz.h"
#include "host/engines/unity.h"
#include "host/engines/unreal.h"
#include "host/lens_files/lens_file.h"
#include "host/result/result_file.h"
#include "host/text/files.h"
#include "report/page.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  const std::string content(fuzz::TextOf(data, size));
  const auto file = fuzz::FileWith(content, "result.json");
  host::IsResultFile(file);
  host::IsLensFile(file);
  try {
    const host::ExportInput input = host::ReadResult(file);
    const host::UnrealValues values = host::ToUnreal(input);
    for (const double value : values.locationCm) {
      fuzz::Require(std::isfinite(value), "a location is not finite");
    }
    if (values.lens) {
      host::LensFileText(values, "lens", true);
    }
    host::ToUnity(input);
    for (const host::LensFileFormat& format : host::kLensFileFormats) {
      if (format.isText) {
        format.write(input, {});
      }
    }
  } catch (const std::runtime_error&) {  // refused, or of a calibration that failed
  }
  try {
    const auto result = host::ParseJson<nlohmann::ordered_json>(content);
    const std::string page = report::Page(result, {}, "/");
    fuzz::Require(page.find("</html>") != std::string::npos, "an incomplete page");
  } catch (const std::exception&) {  // no JSON, or not an object
  }
  return 0;
}
