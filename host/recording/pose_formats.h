// Reads recordings of one tracker from the files of other programs.

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/input/reported_axes.h"
#include "host/recording/pose_recording.h"
#include "host/recording/stamp.h"

namespace trackedcam::host {

enum class PoseFileKind {
  kTum,          // t x y z qx qy qz qw, separated by blanks; seconds
  kEuroc,        // time,x,y,z,qw,qx,qy,qz and possibly more; nanoseconds
  kOpenTrackIo,  // one sample of OpenTrackIO on each line
  kColumns       // a table with a header, separated by commas, semicolons or tabs
};

/// "tum", "euroc", "opentrackio" or "csv"; nothing for another name.
std::optional<PoseFileKind> ParsePoseFileKind(std::string_view name);

/// The columns of a table, as they are named in its header.
struct PoseColumns {
  std::string time, x, y, z, qw, qx, qy, qz;
};

/// "time=Time,x=Cam.X,y=Cam.Y,...": all eight columns, in any order.
/// @throws InputError if one is missing, named twice or unknown.
PoseColumns ParsePoseColumns(const std::string& text);

/// How a file is to be read; what is not stated is recognised in the file.
struct PoseFormat {
  std::optional<PoseFileKind> kind;
  std::optional<PoseColumns> columns;  // of kColumns
  // OpenTrackIO states both itself.
  const TrackerUnit* unit = nullptr;  // of the positions; null: the header's, otherwise m
  std::optional<TimeUnit> timeUnit;   // otherwise the header's or the format's
};

/// Poses with the stamp of an earlier one or an earlier stamp, or with a value that is missing,
/// nan, inf or a quaternion of zeros, are left out and counted, and so is a last line that is cut
/// off.
/// @throws InputError if the file cannot be read, is too large, has an unknown format, a line that
///         is not of its format, or fewer than two poses; the message says where and what to do.
PoseRecording ReadPoseRecording(const std::filesystem::path& file, const PoseFormat& format = {});

}  // namespace trackedcam::host
