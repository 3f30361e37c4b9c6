#pragma once

#include <string>
#include <utility>
#include <vector>

#include "crosscheck/result.h"

namespace trackedcam::host {

using crosscheck::Severity;

/// Something that a user must know about a shoot or its result.
struct Finding {
  std::string id;  // for programs: "mountingOff"
  Severity severity = Severity::kNote;
  std::string text;    // for people: one sentence, which names row or photograph
  std::string advice;  // what to do about it, one sentence; empty where the text says it all
  std::vector<std::pair<std::string, double>> numbers;  // of the text, by name
  std::vector<std::string> photographs;                 // that it names
  std::string detail;                                   // a short id, such as of a likely slip
};

}  // namespace trackedcam::host
