#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "app/engines/engine.h"

namespace trackedcam::app {

inline const Engine& EngineNamed(std::string_view name) {
  for (const Engine& engine : kEngines) {
    if (engine.name == name) {
      return engine;
    }
  }
  throw std::invalid_argument("there is no engine " + std::string(name));
}

}  // namespace trackedcam::app
