#pragma once

#include <clocale>
#include <locale>
#include <stdexcept>
#include <string>

namespace trackedcam::test {

/// During its lifetime the process has a locale with a decimal comma, like many hosts.
class ForeignLocale {
 public:
  ForeignLocale() {
    // Streams get their own decimal comma, because not every C++ runtime knows the system's
    // locales.
    std::locale::global(std::locale(std::locale::classic(), new DecimalComma));
    // The locale's names on Linux and on Windows.
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr &&
        std::setlocale(LC_ALL, "German_Germany.1252") == nullptr) {
      throw std::runtime_error("The machine has no German locale.");
    }
  }
  ~ForeignLocale() { std::locale::global(std::locale::classic()); }
  ForeignLocale(const ForeignLocale&) = delete;
  ForeignLocale& operator=(const ForeignLocale&) = delete;

 private:
  class DecimalComma : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
};

}  // namespace trackedcam::test
