#pragma once

#include <stdexcept>

namespace trackedcam::host {

/// An input cannot be used; the message says what to change.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace trackedcam::host
