#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "host/engines/engine.h"

namespace trackedcam::host {

inline const Engine& EngineNamed(std::string_view name) {
  for (const Engine& engine : kEngines) {
    if (engine.name == name) {
      return engine;
    }
  }
  throw std::invalid_argument("there is no engine " + std::string(name));
}

}  // namespace trackedcam::host
