// Text, links and images in the form that the page needs.

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace trackedcam::report {

/// For the text of an element or the value of an attribute in double quotes. Control characters,
/// which HTML has no way to write, become U+FFFD.
std::string EscapeHtml(std::string_view text);

/// JSON for the inside of a script element: without any `<`, which could end the element.
std::string EscapeJson(std::string_view json);

std::string Base64(std::string_view bytes);

/// The bytes of hexadecimal digits.
std::string BytesOfHex(std::string_view digits);

/// The address of a file as seen from a page in `folder`: relative if possible, and never one that
/// a browser could take for anything but a file.
std::string FileLink(const std::filesystem::path& file, const std::filesystem::path& folder);

/// The media type of an image that a page may embed, by its first bytes; empty for all others.
std::string_view ImageType(std::string_view bytes);

}  // namespace trackedcam::report
