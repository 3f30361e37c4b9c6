// Loads the library by name, finds its functions, calls one of each kind and unloads it, a hundred
// times. Arguments: the library, and a folder for the logs.

#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "library.h"

namespace {

using Numbers = std::vector<double>;

// The types of the public header. A host without the header declares them itself.
using CalibrationFunction = int (*)(std::string, double, double, int, int, double, Numbers, Numbers,
                                    Numbers&, Numbers&, Numbers&, Numbers&, Numbers&, Numbers&,
                                    Numbers&, std::string, bool, int);
using ExportFunction = int (*)(Numbers, Numbers&, Numbers&, std::string);

constexpr std::array<const char*, 5> kFunctions = {
    {"Calibration", "CamAxisToUE4", "CamAxisToUE5", "CamAxisToUE5_ExportxN", "CamAxisToAximmetry"}};
constexpr int kRounds = 100;
constexpr int kDataFileNotOpened = 1;

template <class Function>
Function Find(void* library, const char* name) {
  return reinterpret_cast<Function>(FindFunction(library, name));
}

// A missing data file gives a result code.
bool ReportsAMissingFile(void* library, const std::string& logFolder) {
  const auto calibrate = Find<CalibrationFunction>(library, "Calibration");
  Numbers imageSize, focal, center, distortion, transform, fieldOfView, focalLengthMm;
  return calibrate(logFolder + "/missing.csv", 36, 20.25, 9, 6, 0.03, {0, 0, 0}, {0, 0, 0},
                   imageSize, focal, center, distortion, transform, fieldOfView, focalLengthMm,
                   logFolder, false, 1000) == kDataFileNotOpened;
}

// Exports a translation of 1, 2 and 3 cm without rotation: the axes change, the length does not.
bool Exports(void* library, const std::string& logFolder) {
  const auto toEngine = Find<ExportFunction>(library, "CamAxisToUE5");
  const Numbers transformCamTc = {1, 0, 0, 0.01, 0, 1, 0, 0.02, 0, 0, 1, 0.03, 0, 0, 0, 1};
  Numbers quaternion, translationCm;
  return toEngine(transformCamTc, quaternion, translationCm, logFolder) == 0 &&
         quaternion.size() == 4 && translationCm.size() == 3 &&
         std::abs(std::hypot(std::hypot(translationCm[0], translationCm[1]), translationCm[2]) -
                  std::sqrt(14.0)) < 1e-9;
}

bool Round(const char* libraryPath, const std::string& logFolder) {
  void* const library = LoadLibraryByName(libraryPath);
  if (library == nullptr) {
    std::fprintf(stderr, "cannot load %s\n", libraryPath);
    return false;
  }
  for (const char* name : kFunctions) {
    if (FindFunction(library, name) == nullptr) {
      std::fprintf(stderr, "%s has no function %s\n", libraryPath, name);
      return false;
    }
  }
  return ReportsAMissingFile(library, logFolder) && Exports(library, logFolder) &&
         UnloadLibrary(library);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: %s LIBRARY LOG_FOLDER\n", argv[0]);
    return 2;
  }
  for (int round = 1; round <= kRounds; ++round) {
    if (!Round(argv[1], argv[2])) {
      std::fprintf(stderr, "round %d failed\n", round);
      return 1;
    }
  }
  std::printf("%d rounds of loading, calling and unloading\n", kRounds);
}
