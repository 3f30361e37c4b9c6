// The frames of a film, as files in a folder, with their times.

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace trackedcam::host {

struct FilmFrame {
  std::string name;    // of its file in the folder
  double seconds = 0;  // of the film's clock
};

struct Film {
  std::filesystem::path folder;
  std::vector<FilmFrame> frames;      // by rising time
  std::size_t framesWithoutTime = 0;  // left out
  std::size_t timesWithoutFrame = 0;  // left out
  std::size_t repeatedTimes = 0;      // left out: frames with the time of another one
};

/// @param times A CSV file with the header "frame,time": names of files in the folder, or their
///              numbers in its order from 1; seconds. Or a "timecode format v2": one time in
///              milliseconds for each frame in order.
/// @throws InputError if the folder has no frames, or the file is not of this form.
Film ReadFilm(const std::filesystem::path& folder, const std::filesystem::path& times);

/// All pictures of the folder in the order of the numbers in their names, so many each second.
/// @throws InputError if there are none.
Film ReadFilm(const std::filesystem::path& folder, double framesPerSecond);

}  // namespace trackedcam::host
