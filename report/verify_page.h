// The page of a verification: the answer, old and new side by side, each photograph, and where in
// the image the corners are off.

#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// Complete HTML that loads nothing and needs no script.
/// @param verification The values of a verification, as `trackedcam verify --json` prints them.
/// @throws std::invalid_argument if it is no JSON object.
std::string VerifyPage(const nlohmann::ordered_json& verification);

}  // namespace trackedcam::report
