// Reads the log of a calibration, as it grows or afterwards.

#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "host/run/run_record.h"

namespace trackedcam::host {

struct Progress {
  std::string stage;
  std::size_t done;  // photographs
  std::size_t all;   // 0 in a stage that does not go through the photographs
};

using ProgressListener = std::function<void(const Progress&)>;

/// Lines are told apart by where they stand, never by what they hold alone: a log names
/// photographs, and a photograph may be named like any line.
class RunLogReader {
 public:
  /// The listener hears of every stage and of every photograph that is done.
  /// @param photographs Those of the data file, in its order; empty where it is not known.
  explicit RunLogReader(
      std::vector<std::string> photographs = {},
      ProgressListener listener = [](const Progress&) {});

  /// Takes the next piece of the log, of any length.
  void Consume(std::string_view text);

  /// Of a log that holds several runs, the last one's.
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
  void ReadOutlier(const std::string& index);
  void ReadError(const std::string& message);
  void EndRawData();
  void NamePhotographs();
  void BeginStage(const char* stage, std::size_t photographs);
  void ShowDone(std::size_t photographs);

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
  std::size_t matrixRows_ = 0;  // that are still to come
  bool isSecondSolve_ = false;
  RunRecord record_;
};

/// The record of a log that is complete or as far as it goes.
RunRecord ReadRunLog(std::istream& log);

}  // namespace trackedcam::host
