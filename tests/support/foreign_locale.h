#pragma once

#include <clocale>
#include <locale>
#include <stdexcept>

namespace trackedcam::test {

/// While it lives, the process has a locale with a decimal comma, as many hosts set one.
class ForeignLocale {
 public:
  ForeignLocale() {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
      throw std::runtime_error("The locale de_DE.UTF-8 is not on this machine.");
    }
    std::locale::global(std::locale("de_DE.UTF-8"));
  }
  ~ForeignLocale() { std::locale::global(std::locale::classic()); }
  ForeignLocale(const ForeignLocale&) = delete;
  ForeignLocale& operator=(const ForeignLocale&) = delete;
};

}  // namespace trackedcam::test
