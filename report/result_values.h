// Numbers as a person reads them.

#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>
#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// With that many decimals and a true minus sign; a dash for a number that is not there.
std::string Fixed(const std::optional<double>& number, int decimals);

/// The number at `path`, which has keys and indices between slashes ("/crossCheck/t95"); none where
/// there is no number.
std::optional<double> NumberAt(const nlohmann::ordered_json& json, const std::string& path);

/// A path one index further.
std::string At(const std::string& path, std::size_t index);

/// Nothing where one of them is.
std::optional<double> Times(const std::optional<double>& number,
                            const std::optional<double>& factor);

/// The text at `path`; empty where there is none.
std::string TextAt(const nlohmann::ordered_json& json, const std::string& path);

/// The value at `path`; null where there is none.
const nlohmann::ordered_json& ValueAt(const nlohmann::ordered_json& json, const std::string& path);

/// @throws std::invalid_argument when the text is no result.
nlohmann::ordered_json ParseResult(const std::string& text);

}  // namespace trackedcam::report
