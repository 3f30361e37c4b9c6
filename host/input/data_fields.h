// A row of the tracker data file, field by field.

#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace trackedcam::host {

constexpr std::size_t kFields = 16;  // that the library reads: time, path, twice seven numbers
constexpr std::size_t kPathField = 1;
constexpr std::size_t kFirstPoseField = 2;

/// All fields, be they more or fewer than the library reads.
std::vector<std::string_view> SplitFields(std::string_view row, char separator = ',');

enum class FieldKind { kEmpty, kNumber, kNotFinite, kText };

/// Blanks around a number and a plus sign before it do not count.
FieldKind KindOf(std::string_view field);

/// 0 for what is no number, as the library takes it.
double NumberIn(std::string_view field);

/// Position x, y, z in metres, quaternion w, x, y, z.
using TrackerPose = std::array<double, 7>;

/// That of the camera's tracker, then that of the chart's; a field that is missing reads as 0.
std::array<TrackerPose, 2> PosesIn(const std::vector<std::string_view>& fields);

}  // namespace trackedcam::host
