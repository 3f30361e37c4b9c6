#pragma once

#include <stdexcept>

namespace trackedcam::host {

/// What was asked for cannot be done as it was asked; the message says what to change.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace trackedcam::host
