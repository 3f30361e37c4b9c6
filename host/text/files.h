// Whole files.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace trackedcam::host {

/// @throws std::runtime_error when the file cannot be read.
std::string ReadFile(const std::filesystem::path& file);

/// Replaces a file at once: whoever reads it sees the old content or the new one, also after the
/// machine or the process has been stopped at any moment. Where writing fails the old file stays.
/// The new one keeps the permissions of the old one. Of a link, it is the link that is replaced.
/// @throws std::runtime_error when the file cannot be written, or what has its name is no file.
void WriteFile(const std::filesystem::path& file, const std::string& content);

// What the program's JSON files have in common.

/// The content of a file, as nlohmann::json or, in the order of the file, as ordered_json.
/// @throws std::exception when it cannot be read, is no JSON, or is larger or nested deeper than
/// any
///         file of this system: such a one could take all memory.
template <class Json>
Json ReadJson(const std::filesystem::path& file);

/// The same of a text.
template <class Json>
Json ParseJson(const std::string& text);

/// The list of that name and length.
/// @throws std::exception when it is missing, longer, shorter, or holds anything but numbers.
std::vector<double> ReadNumbers(const nlohmann::json& json, const char* key, std::size_t count);

/// JSON has no infinity and no nan: such a number is null, as is one that is missing.
nlohmann::ordered_json NumberJson(const std::optional<double>& number);
nlohmann::ordered_json NumbersJson(const std::vector<double>& numbers);

/// The text of a file. Bytes of a path that are not UTF-8 are replaced.
std::string JsonText(const nlohmann::ordered_json& json);

}  // namespace trackedcam::host
