#include "host/verify/verify.h"

#include <algorithm>
#include <cmath>

#include "host/findings/finding_text.h"
#include "host/input/image_header.h"
#include "host/input/photograph_checks.h"
#include "host/run/library_stages.h"
#include "host/text/text.h"
#include "host/verdict/cross_check_adapter.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr double kNotablePixels = 0.5;  // of what the calibrated lens leaves out

std::string SizeText(std::uint64_t width, std::uint64_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

std::string BoardText(int columns, int rows) {
  return std::to_string(columns) + " x " + std::to_string(rows);
}

[[noreturn]] void Refuse(const VerifyInputs& inputs, const std::string& what,
                         const std::string& now, const std::string& then,
                         const std::string& advice) {
  throw InputError(what + " " + now + ", but " + inputs.result.u8string() +
                   " is of a calibration " + "with " + then + ". " + advice);
}

const char* OrderOf(bool isXyzw) {
  return isXyzw ? "xyzw" : "wxyz";
}

// Poses that are read in another way than the calibration's describe other trackers.
void RequireSameReading(const VerifyInputs& inputs, const StoredCalibration& stored) {
  const std::string advice = "State the same, or leave the option out.";
  const auto require = [&](bool isSame, const char* option, const std::string& now,
                           const std::string& then) {
    if (!isSame) {
      Refuse(inputs, option, "is " + now, then, advice);
    }
  };
  const TrackerFrame& frame = stored.trackerFrame;
  if (inputs.trackerAxes != nullptr) {
    require(inputs.trackerAxes == &AxesOf(frame), "--tracker-axes",
            std::string(inputs.trackerAxes->name), std::string(AxesOf(frame).name));
  }
  if (inputs.trackerUnit != nullptr) {
    require(inputs.trackerUnit->unitsPerMetre == UnitOf(frame).unitsPerMetre, "--tracker-units",
            std::string(inputs.trackerUnit->name), std::string(UnitOf(frame).name));
  }
  if (inputs.hasQuaternionsXyzw) {
    require(*inputs.hasQuaternionsXyzw == frame.hasQuaternionsXyzw, "--quaternion-order",
            OrderOf(*inputs.hasQuaternionsXyzw), OrderOf(frame.hasQuaternionsXyzw));
  }
  if (inputs.invertTrackerQuaternions) {
    require(*inputs.invertTrackerQuaternions == stored.calibration.invertTrackerQuaternions,
            "--invert-tracker-quaternions", "stated", "quaternions that are not inverted");
  }
}

// Nothing if it is the calibration's.
std::optional<crosscheck::Board> OtherBoard(const VerifyInputs& inputs,
                                            const StoredCalibration& stored) {
  const crosscheck::Calibration& old = stored.calibration;
  crosscheck::Board board = {old.board.columns, old.board.rows, old.square, {}};
  if (inputs.board) {
    board.columns = inputs.board->at(0);
    board.rows = inputs.board->at(1);
  }
  board.square = inputs.squareMetres.value_or(old.square);
  Inputs possible;
  possible.sensorMm = {36, 24};  // of any size
  possible.board = {board.columns, board.rows};
  possible.squareMetres = board.square;
  RequirePossible(possible);
  const std::string advice = "For another chart, add --chart-remounted.";
  const bool isOtherBoard = board.columns != old.board.columns || board.rows != old.board.rows;
  const bool isOtherSquare = std::abs(board.square - old.square) > 1e-9;
  if (isOtherBoard && !inputs.chartRemounted) {
    Refuse(inputs, "--board", "is " + BoardText(board.columns, board.rows),
           BoardText(old.board.columns, old.board.rows) + " inner corners", advice);
  }
  if (isOtherSquare && !inputs.chartRemounted) {
    Refuse(inputs, "--square", "is " + Shortest(board.square) + " m",
           "squares of " + Shortest(old.square) + " m", advice);
  }
  return isOtherBoard || isOtherSquare ? std::optional(board) : std::nullopt;
}

void RequireSameSize(const VerifyInputs& inputs, const crosscheck::Lens& lens,
                     const std::string& name, const fs::path& file) {
  const std::optional<PhotographHeader> header = ReadPhotographHeader(file);
  if (!header) {
    return;
  }
  const std::uint64_t width = header->IsRotated() ? header->height : header->width;
  const std::uint64_t height = header->IsRotated() ? header->width : header->height;
  if (width != static_cast<std::uint64_t>(lens.width) ||
      height != static_cast<std::uint64_t>(lens.height)) {
    Refuse(inputs, name, "has " + SizeText(width, height) + " pixels",
           "photographs of " + SizeText(static_cast<std::uint64_t>(lens.width),
                                        static_cast<std::uint64_t>(lens.height)),
           "Set the camera as it was then, or calibrate again.");
  }
}

fs::path PathOf(const DataRow& row, const VerifyInputs& inputs) {
  return inputs.workingFolder / fs::u8path(row.photograph);
}

// What a calibration would not be given is left out here too.
PhotographList CheckedRows(const VerifyInputs& inputs, const crosscheck::Lens& lens,
                           const ShootData& shoot, std::vector<Finding>& findings) {
  Inputs ofChecks;
  ofChecks.data = inputs.data;
  ofChecks.workingFolder = inputs.workingFolder;
  // The size is compared with the result's, so that its shape needs no check.
  ofChecks.sensorMm = {static_cast<double>(lens.width), static_cast<double>(lens.height)};
  const PhotographChecks checks = CheckPhotographs(shoot.rows, ofChecks);
  findings.insert(findings.end(), checks.findings.begin(), checks.findings.end());
  SortFindings(findings);
  PhotographList list = ListPhotographs(shoot.rows, checks.unlisted);
  for (PhotographEntry& entry : list) {
    const auto isIn = [&](const std::vector<std::size_t>& rows) {
      return std::binary_search(rows.begin(), rows.end(), entry.index);
    };
    if (isIn(shoot.leaveOut) || isIn(checks.leaveOut)) {
      entry.state = PhotographState::kLeftOutBeforeTheRun;
      entry.reason = isIn(shoot.leaveOut) ? "no pose of a tracker in its row" : "";
    }
  }
  return list;
}

void EnterVerification(VerifyReport& report) {
  for (PhotographEntry& entry : report.photographs) {
    if (!entry.checked) {
      continue;
    }
    const bool isUsed = report.verification.photographs[*entry.checked].used;
    entry.state = isUsed ? PhotographState::kUsed : PhotographState::kLeftOutByCrossCheck;
    entry.reason = isUsed ? "" : "it contradicts the others";
  }
}

}  // namespace

std::vector<fs::path> PhotographsOf(const VerifyInputs& inputs) {
  std::vector<fs::path> files;
  for (const DataRow& row : ReadRows(ReadDataContent(inputs.data))) {
    if (!row.photograph.empty() && IsUtf8(row.photograph)) {
      files.push_back(PathOf(row, inputs));
    }
  }
  return files;
}

VerifyReport Verify(const VerifyInputs& inputs) {
  RequirePossible(Accuracy(), Inputs().scaleUncertainty, inputs.atMetres);
  VerifyReport report;
  report.inputs = inputs;
  report.stored = ReadCalibration(inputs.result);
  const crosscheck::Calibration& old = report.stored.calibration;
  RequireSameReading(inputs, report.stored);
  const std::optional<crosscheck::Board> otherBoard = OtherBoard(inputs, report.stored);
  const crosscheck::Board& board = otherBoard ? *otherBoard : old.board;

  const ShootData shoot = ReadShootData(inputs.data, report.stored.trackerFrame);
  report.findings = shoot.findings;
  report.photographs = CheckedRows(inputs, old.lens, shoot, report.findings);
  const std::vector<std::size_t> entries = ToRun(report.photographs);
  std::vector<fs::path> files;
  for (const std::size_t entry : entries) {
    const DataRow& row = shoot.rows[report.photographs[entry].index];
    files.push_back(PathOf(row, inputs));
    RequireSameSize(inputs, old.lens, row.photograph, files.back());
  }
  if (files.empty() && !report.findings.empty()) {
    throw InputError(Text(report.findings.front()) + ' ' + Advice(report.findings.front()));
  }
  const auto corners = FindBoards(files, {board.columns, board.rows});
  std::vector<crosscheck::Photograph> photographs;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    PhotographEntry& entry = report.photographs[entries[i]];
    if (corners[i].empty()) {
      entry.state =
          IsCompleteImage(files[i]) ? PhotographState::kBoardNotFound : PhotographState::kNotLoaded;
      continue;
    }
    entry.checked = photographs.size();
    photographs.push_back(PhotographOf(shoot.rows[entry.index], corners[i]));
    report.corners.push_back(corners[i]);
  }
  report.verification =
      crosscheck::Verify(old, photographs, {inputs.chartRemounted, otherBoard, inputs.atMetres});
  EnterVerification(report);
  if (const auto& lensModel = report.verification.lensModel) {
    const bool matters = lensModel->pixels >= kNotablePixels;
    report.findings.push_back({matters ? Severity::kWarning : Severity::kNote, *lensModel, {}});
    SortFindings(report.findings);
  }
  return report;
}

int StatusOf(crosscheck::Answer answer) {
  constexpr int kHolds = 0;
  constexpr int kUnknown = 1;
  constexpr int kChanged = 3;
  return answer == crosscheck::Answer::kHolds    ? kHolds
         : answer == crosscheck::Answer::kTooFew ? kUnknown
                                                 : kChanged;
}

}  // namespace trackedcam::host
