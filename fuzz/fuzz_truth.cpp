// The truth of a simulated shoot: accepted with sixteen values, or refused.

#include "fuzz/fuzz.h"
#include "host/input/inputs.h"
#include "host/result/result_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  const auto file = fuzz::FileWith(fuzz::TextOf(data, size), "truth.json");
  host::IsTruthFile(file);
  try {
    const host::CalibrationOutputs truth = host::ReadTruth(file, {36, 20.25});
    fuzz::Require(truth.transformCamTc.size() == 16, "sixteen values");
  } catch (const host::InputError&) {
  }
  return 0;
}
