#include "host/watch/shoot_watch.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <filesystem>

#include "crosscheck/cross_check.h"
#include "host/input/data_checks.h"
#include "host/input/edge_width.h"
#include "host/input/photograph_file.h"
#include "host/input/reported_axes.h"
#include "host/text/text.h"
#include "host/verdict/cross_check_adapter.h"
#include "host/verdict/verdict.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLeastToSolve = 5;  // fewer do not determine the lens

std::array<int, 2> SizeOf(const PhotographHeader& header) {
  const auto width = static_cast<int>(header.width);
  const auto height = static_cast<int>(header.height);
  return header.IsRotated() ? std::array<int, 2>{height, width} : std::array<int, 2>{width, height};
}

std::vector<std::array<double, 2>> AsArrays(const BoardCorners& corners) {
  std::vector<std::array<double, 2>> arrays;
  for (const Eigen::Vector2d& corner : corners) {
    arrays.push_back({corner.x(), corner.y()});
  }
  return arrays;
}

// A recorder may be in the middle of a line.
std::string CompleteLines(std::string content) {
  content.erase(content.find_last_of('\n') + 1);
  return content;
}

// Errors fall with the square root of the number of photographs.
std::size_t StillNeeded(const Accuracy& known, const Accuracy& until, std::size_t used) {
  const double times = std::max(known.mm / until.mm, known.degrees / until.degrees);
  const double enough = std::ceil(static_cast<double>(used) * times * times);
  const auto least = static_cast<double>(kLeastPhotographs);
  return static_cast<std::size_t>(
      std::max(times > 1 ? 1.0 : 0.0, std::max(enough, least) - static_cast<double>(used)));
}

bool IsContradicted(const crosscheck::CrossCheck& check) {
  return std::any_of(check.findings.begin(), check.findings.end(), [](const auto& finding) {
    return finding.severity == crosscheck::Severity::kError;
  });
}

}  // namespace

ShootWatch::ShootWatch(const Inputs& inputs, const Accuracy& until)
    : inputs_(inputs), until_(until) {
  RequirePossible(inputs);
  RequirePossible(until, inputs.scaleUncertainty, inputs.atMetres);
}

ShootWatch::Searched ShootWatch::Search(const std::string& photograph) {
  Searched searched;
  const fs::path file = inputs_.workingFolder / fs::u8path(photograph);
  if (!IsCompleteImage(file)) {
    return searched;
  }
  searched.state = WatchedState::kUnreadable;
  const std::optional<PhotographHeader> header = ReadPhotographHeader(file);
  if (!header || IsHuge(*header) || IsCostly(file, *header)) {
    return searched;
  }
  if (imageSize_.value_or(SizeOf(*header)) != SizeOf(*header)) {
    searched.state = WatchedState::kOtherSize;
    return searched;
  }
  searched.corners = FindBoards({file}, inputs_.board).front();
  const std::optional<Sharpness> sharpness =
      MeasureSharpness(file, inputs_.board[0], AsArrays(searched.corners));
  if (!sharpness) {
    return searched;
  }
  searched.isSharp = !IsUnsharp(*sharpness);
  searched.state = searched.corners.empty() ? WatchedState::kNoBoard : WatchedState::kBoardFound;
  imageSize_ = SizeOf(*header);
  return searched;
}

std::vector<std::size_t> ShootWatch::Update() {
  const auto isAwaited = [](const WatchedPhotograph& photograph) {
    return photograph.state == WatchedState::kAwaited;
  };
  const std::string content = CompleteLines(ReadDataContent(inputs_.data));
  const auto& before = progress_.photographs;
  if (content == content_ && std::none_of(before.begin(), before.end(), isAwaited)) {
    return {};
  }
  content_ = content;
  const std::vector<DataRow> rows = InReportedAxes(ReadRows(content), inputs_.trackerFrame);
  const std::vector<std::size_t> withoutPose = CheckData(content, rows).leaveOut;
  std::vector<WatchedPhotograph> photographs;
  std::vector<std::size_t> changed;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    WatchedPhotograph photograph;
    photograph.name = rows[i].photograph;
    if (std::binary_search(withoutPose.begin(), withoutPose.end(), i)) {
      photograph.state = WatchedState::kNoPose;
    } else if (photograph.name.empty() || !IsUtf8(photograph.name)) {
      photograph.state = WatchedState::kUnreadable;
    } else {
      Searched& searched = searched_[photograph.name];
      if (searched.state == WatchedState::kAwaited) {
        searched = Search(photograph.name);
      }
      photograph.state = searched.state;
      photograph.isSharp = searched.isSharp;
    }
    const bool isKnown = i < before.size() && before[i].name == photograph.name &&
                         before[i].state == photograph.state;
    if (!isKnown) {
      changed.push_back(i);
    }
    photographs.push_back(std::move(photograph));
  }
  if (!changed.empty() || photographs.size() != before.size()) {
    progress_ = {};
    progress_.photographs = std::move(photographs);
    Solve(rows);
  }
  return changed;
}

void ShootWatch::Solve(const std::vector<DataRow>& rows) {
  crosscheck::Observations observations;
  std::vector<BoardCorners> corners;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    WatchedPhotograph& photograph = progress_.photographs[i];
    if (photograph.state == WatchedState::kBoardFound) {
      corners.push_back(searched_.at(photograph.name).corners);
      photograph.checked = observations.photographs.size();
      observations.photographs.push_back(PhotographOf(rows[i], corners.back()));
    }
  }
  progress_.withBoard = corners.size();
  if (corners.size() < kLeastToSolve) {
    return;
  }
  const crosscheck::Board board = {inputs_.board[0], inputs_.board[1], inputs_.squareMetres, {}};
  const std::optional<crosscheck::Lens> lens = SolveLens(corners, board, *imageSize_);
  if (!lens) {
    return;
  }
  observations.boardColumns = board.columns;
  observations.boardRows = board.rows;
  observations.square = board.square;
  observations.lens = *lens;
  observations.invertTrackerQuaternions = inputs_.invertTrackerQuaternions;
  observations.quaternionAxes = QuaternionAxes(inputs_.trackerFrame);
  observations.mounting = inputs_.mounting;
  observations.goodEnough = until_;
  observations.scaleUncertainty = inputs_.scaleUncertainty;
  try {
    progress_.check = crosscheck::Check(observations);
  } catch (const std::exception&) {
    return;  // such as a lens that is none, from photographs that are all alike
  }
  const crosscheck::CrossCheck& check = *progress_.check;
  if (!check.solved || IsContradicted(check)) {
    return;
  }
  const Accuracy known = {check.t95 * check.standardErrorCamTc.translationMm.maxCoeff(),
                          check.t95 * check.standardErrorCamTc.rotationDegrees.maxCoeff()};
  if (std::isfinite(known.mm) && std::isfinite(known.degrees)) {
    progress_.known = known;
    progress_.stillNeeded = StillNeeded(known, until_, check.used);
  }
}

}  // namespace trackedcam::host
