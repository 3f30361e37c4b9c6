#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace trackedcam::report {

/// An image of one photograph, to embed into a page.
struct Thumbnail {
  std::string bytes;           // of a JPEG or PNG file; empty without an image
  bool isReprojected = false;  // of the reprojected image, which has the corners drawn in
};

/// The file of a picture, to decode.
struct Picture {
  std::string bytes;     // empty if it must not be decoded or embedded
  bool isLarge = false;  // takes so much memory that only one such picture is decoded at a time
};

/// Reads a picture that a result names. The result may be a stranger's, so the caller decides. It
/// is called on several threads at the same time.
using ReadPicture = std::function<Picture(const std::filesystem::path& file)>;

/// One for each entry of `photographs`, in its order: of the reprojected image, or of the
/// photograph if the entry names none or it cannot be read. Works on all processors.
/// @param result A result file.
/// @param areFull Of the photograph, at most 1920 pixels wide and without corners drawn in, which
/// shows its sharpness; otherwise 360 pixels wide.
std::vector<Thumbnail> MakeThumbnails(const nlohmann::ordered_json& result, const ReadPicture& read,
                                      bool areFull = false);

/// Makes the objects that the image library otherwise makes when it first needs them: its codecs
/// and its threads. At the end of the process, objects are destroyed in the reverse order.
void PrepareImageLibrary();

}  // namespace trackedcam::report
