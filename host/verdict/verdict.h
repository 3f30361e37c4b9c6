// What a result code means to whoever shot the photographs.

#pragma once

#include <string>

#include "host/run/library_run.h"

namespace trackedcam::host {

struct Verdict {
  std::string words;
  std::string advice;
};

/// A code that the library does not document gets a verdict that says so.
Verdict VerdictOf(int code);

/// True where the outputs may be used.
bool IsUsable(int code);

/// The same of a whole run. The library hands out the transform of a data file that holds nan as a
/// success; here it is a failure.
Verdict VerdictOf(const LibraryRun& run);
bool IsUsable(const LibraryRun& run);

constexpr int kSuccess = 0;
constexpr int kTooFewPhotographs = 4;
constexpr int kNewShootRecommended = 99;

}  // namespace trackedcam::host
