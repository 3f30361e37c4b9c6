// Reads and writes whole files; JSON in particular.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::host {

/// @throws std::runtime_error if it is not a regular file or cannot be read.
std::string ReadFile(const std::filesystem::path& file);

/// The file that a path leads to, also one that does not exist yet: links stay what they are.
/// @throws std::runtime_error if nothing may be written there: the path leads to a folder, a device
///         or another file of the system, a file that is protected against writing, or in a circle.
std::filesystem::path OutputTarget(const std::filesystem::path& file);

/// Replaces a file in one step: a reader sees either the old content or the new one, also if the
/// process or the machine stops at any moment. After an error the old file is unchanged. The new
/// file keeps the permissions of the old one. If the path is a link, its target is replaced.
/// @throws std::runtime_error if the file cannot be written, as OutputTarget.
void WriteFile(const std::filesystem::path& file, const std::string& content);

/// Creates a file there and removes it.
/// @throws std::runtime_error if that is not possible, for example because the disk is full.
void RequireWritable(const std::filesystem::path& folder);

/// Removes files that WriteFile had not renamed yet when its process was killed, unless they are so
/// new that it may still be writing.
/// @param now Of the clock of the folder's disk.
void RemoveLeftParts(const std::filesystem::path& folder, std::filesystem::file_time_type now);

/// Long enough after its last change that nothing is being written any more.
bool IsOld(const std::filesystem::path& path, std::filesystem::file_time_type now);

// JSON.

/// The content of a file, as nlohmann::json or, in the order of the file, as ordered_json.
/// @throws std::exception if the file cannot be read, is not JSON, or is larger, nested deeper or
///         has more keys in one object than any file of this system. Such a file could use up
///         memory or time.
template <class Json>
Json ReadJson(const std::filesystem::path& file);

/// The same for a text.
template <class Json>
Json ParseJson(const std::string& text);

/// A list of numbers.
/// @throws std::exception if it is missing, has another length, or has anything but numbers.
std::vector<double> ReadNumbers(const nlohmann::json& json, const char* key, std::size_t count);

/// A missing number is null, and so are infinity and NaN, which JSON does not have.
nlohmann::ordered_json NumberJson(const std::optional<double>& number);
nlohmann::ordered_json NumbersJson(const std::vector<double>& numbers);

/// The text of a JSON file. Bytes that are not UTF-8, such as in a path, are replaced.
std::string JsonText(const nlohmann::ordered_json& json);

}  // namespace trackedcam::host
