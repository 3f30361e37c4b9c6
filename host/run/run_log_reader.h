// The log of a run, read while it grows or afterwards.

#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <future>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "host/run/calibration_outputs.h"

namespace trackedcam::host {

enum class DropReason { kNotLoaded, kBoardNotFound, kOutlier };

/// Row and corners of a photograph in which the board was found.
struct RawData {
  std::array<double, 15> row = {};             // as the library read it: time, then Tc and Tr,
                                               // each position (metres) and quaternion w, x, y, z
  std::vector<std::array<double, 2>> corners;  // pixels, row by row of the board
};

struct Photograph {
  std::string path;                   // as the data file has it
  std::optional<DropReason> dropped;  // nothing: in use
  std::optional<RawData> raw = {};
  std::optional<double> errorPixels = {};  // mean of the last pass that had it
};

struct BoardRecord {
  int columns = 0;  // of inner corners
  int rows = 0;
  double square = 0;  // metres
};

/// Pixels of the whole photograph; the distortion's k1 and k2.
struct LensRecord {
  double width = 0, height = 0;
  double fx = 0, fy = 0, cx = 0, cy = 0;
  double k1 = 0, k2 = 0;
  double horizontalFieldOfView = 0, verticalFieldOfView = 0;  // degrees
  double focalLengthMm = 0;
};

struct RunRecord {
  std::string time;  // local, of the first line: "2026-11-21 14:05:09"
  std::string libraryVersion;
  bool invertsQuaternions = false;
  std::optional<BoardRecord> board;
  std::vector<Photograph> photographs;      // in the order of the rows
  std::optional<LensRecord> lens;           // if the lens was solved and accepted
  std::optional<double> lensError;          // of the lens solution, pixels
  std::optional<double> reprojectionError;  // mean of the last pass, pixels
  std::optional<double> spread;             // of the translations of single photographs, metres
  /// Of the second solve, 16 numbers row by row; empty if the run did not reach it.
  std::vector<double> transformCamTc;
  std::string errorMessage;  // of the last error line, without its code
  std::optional<int> errorCode;
  std::string lastMessage;
  bool isSuccessful = false;  // the log's last line says so
};

/// The library's results, which the log has with six decimals.
CalibrationOutputs OutputsOf(const RunRecord& record);

/// Whether the library's result rests on the photograph.
bool IsUsed(const RunRecord& record, const Photograph& photograph);

std::vector<std::string> UsedPhotographs(const RunRecord& record);

/// True if photographs were loaded and the board was found in none of them.
bool IsBoardNowhere(const RunRecord& record);

struct Progress {
  std::string stage;
  std::size_t done;             // photographs
  std::size_t all;              // 0 in a stage that does not go through the photographs
  std::string photograph = {};  // the one in work, as the data file names it; empty: not known
};

using ProgressListener = std::function<void(const Progress&)>;

/// Reads each line by its place in the log, never by its text alone: a photograph may be named like
/// any line.
class RunLogReader {
 public:
  /// @param photographs Names in the order of the data file; empty if it is not known.
  /// @param listener Called for every stage and every photograph that is done.
  explicit RunLogReader(
      std::vector<std::string> photographs = {},
      ProgressListener listener = [](const Progress&) {});

  /// Takes the next piece of the log, of any length.
  void Consume(std::string_view text);

  /// The last run's, if the log holds several.
  const RunRecord& Record() const { return record_; }

 private:
  enum class Section { kOpening, kBoard, kPhotographs, kRawData, kLens, kTrackers };

  void ConsumeLine(std::string_view line);
  void ConsumeMessage(const std::string& message);
  void ReadOpening(const std::string& message);
  void ReadBoard(const std::string& message);
  void ReadPhotographs(const std::string& message);
  bool ReadDrop(const std::string& message);
  void ReadRawData(const std::string& message);
  void ReadLens(const std::string& message);
  void ReadTrackers(const std::string& message);
  bool ReadImageError(const std::string& message);
  Photograph* InUse(int index);
  void ReadError(const std::string& message);
  void EndRawData();
  void NamePhotographs();
  void BeginStage(const char* stage, std::size_t photographs);
  void ShowDone(std::size_t photographs, const std::string& inWork = {});

  std::vector<std::string> photographs_;
  ProgressListener listener_;
  Progress progress_ = {};
  std::string line_;
  bool hasCarriageReturns_ = false;
  Section section_ = Section::kOpening;
  std::string time_;
  std::vector<std::array<double, 2>> boardCorners_;
  std::string rawPath_;              // the line that names the next photograph, or ends the data
  std::vector<Photograph> rawData_;  // so far
  LensRecord lens_;
  std::size_t matrixRows_ = 0;  // still to come
  bool isSecondSolve_ = false;
  RunRecord record_;
};

/// The record of a whole log, or as far as it goes.
RunRecord ReadRunLog(std::istream& log);

/// Reads the log while the library writes it. The library names it after the second in which it
/// begins, so the folder must hold no other log.
class LogFollower {
 public:
  /// @param listener Called on a thread of the follower, until Stop.
  LogFollower(std::filesystem::path folder, std::vector<std::string> photographs,
              ProgressListener listener);
  ~LogFollower();
  LogFollower(const LogFollower&) = delete;
  LogFollower& operator=(const LogFollower&) = delete;

  /// Reads the rest. Call it once, after the library has returned.
  RunRecord Stop();

  /// Empty if the library could not write one.
  const std::filesystem::path& Log() const { return log_; }

 private:
  void ReadMore();

  std::filesystem::path folder_;
  std::filesystem::path log_;
  std::streamoff position_ = 0;
  RunLogReader reader_;
  std::promise<void> stop_;
  std::thread thread_;
};

/// The log in a folder; an empty path if there is none.
std::filesystem::path FindLog(const std::filesystem::path& folder);

}  // namespace trackedcam::host
