// Values of a result, and numbers as a person reads them.

#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// With a true minus sign; a dash for a number that is missing or not finite.
std::string Fixed(const std::optional<double>& number, int decimals);

/// The number at `path`, a JSON pointer ("/crossCheck/t95"); nothing if there is no number.
std::optional<double> NumberAt(const nlohmann::ordered_json& json, const std::string& path);

/// A path with an index appended.
std::string At(const std::string& path, std::size_t index);

/// The product; nothing if one of them is missing.
std::optional<double> Times(const std::optional<double>& number,
                            const std::optional<double>& factor);

/// The text at `path`; empty if there is none.
std::string TextAt(const nlohmann::ordered_json& json, const std::string& path);

/// The value at `path`; null if there is none.
const nlohmann::ordered_json& ValueAt(const nlohmann::ordered_json& json, const std::string& path);

/// The last part of a path.
std::string ShortName(const std::string& path);

}  // namespace trackedcam::report
