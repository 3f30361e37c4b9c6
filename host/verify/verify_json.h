#pragma once

#include <nlohmann/json_fwd.hpp>

#include "host/verify/verify.h"

namespace trackedcam::host {

/// The result file of a verification: every value at full precision; null for what is not known.
nlohmann::ordered_json VerifyJson(const VerifyReport& report);

/// Recognises such a file.
bool IsVerifyFile(const std::filesystem::path& file);

}  // namespace trackedcam::host
