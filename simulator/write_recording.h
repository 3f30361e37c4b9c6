// Writes a recording to disk, as a film and the tracking system's files, together with the truth.

#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "simulator/recording.h"

namespace trackedcam::simulator {

/// Writes frames/000001.jpg and so on, frames/times.csv, camera_poses.txt, chart_poses.txt,
/// truth.json and simulated.txt, the list of the others. Creates the folder, and replaces the files
/// of an earlier recording in it.
/// @param progress Called after each frame with the number written and the number of all.
/// @throws std::runtime_error or std::filesystem::filesystem_error if something cannot be written.
void WriteRecording(const Recording& recording, const std::filesystem::path& folder,
                    const std::function<void(int done, int all)>& progress = {});

/// "frames/000001.jpg", counted from 0.
std::string FramePath(int index);

/// A table: the frame's number from 1, and its time on the frame clock in seconds.
std::string TimesText(const Recording& recording);

/// One pose of a tracker on each line: t x y z qx qy qz qw, seconds and metres, in frame Base.
std::string PosesText(const std::vector<RecordedPose>& poses, const RecordingOptions& options);

/// All true values, as for a shoot whose photographs are the frames, with the clocks: delayMs,
/// driftPpm, firstStamp.
std::string TruthText(const Recording& recording);

}  // namespace trackedcam::simulator
