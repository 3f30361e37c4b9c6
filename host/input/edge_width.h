// How sharp a photograph is, from its pixels.

#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

namespace trackedcam::host {

/// What a decoder makes of a photograph.
struct Sharpness {
  int heightPixels = 0;
  /// From 10 % to 90 % of the contrast, the median; nothing without strong edges.
  std::optional<double> edgeWidthPixels;
  /// At the corners of a board: of the borders along its rows, and along its columns. A motion
  /// blurs those across it only.
  std::optional<std::array<double, 2>> byDirection;
  bool repeatsLastRow = false;  // the rows above it are the same, as where a file is cut short
};

/// Nothing if the file cannot be decoded.
/// @param corners Inner corners of a board with so many columns, row by row. If there are none, the
/// strong edges of the whole image are measured.
std::optional<Sharpness> MeasureSharpness(const std::filesystem::path& file, int columns,
                                          const std::vector<std::array<double, 2>>& corners);

/// Wider edges than those at which corners are lost.
bool IsUnsharp(const Sharpness& sharpness);

}  // namespace trackedcam::host
