// The files that the build puts into the program.

#pragma once

#include <cstddef>
#include <string>

namespace trackedcam::report {

struct EmbeddedFile {
  const unsigned char* bytes;
  std::size_t size;
  const char* sha256;  // hexadecimal, of the bytes

  std::string Text() const { return {bytes, bytes + size}; }
};

extern const EmbeddedFile kPageHtml;
extern const EmbeddedFile kVerifyHtml;
extern const EmbeddedFile kWatchHtml;
extern const EmbeddedFile kPageCss;
extern const EmbeddedFile kPageJs;
extern const EmbeddedFile kThreeJs;
extern const EmbeddedFile kOrbitControlsJs;
extern const EmbeddedFile kChartJs;

}  // namespace trackedcam::report
