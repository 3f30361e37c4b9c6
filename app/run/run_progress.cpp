#include "app/run/run_progress.h"

#include <optional>
#include <utility>

#include "app/run/log_message.h"
#include "app/text/number_text.h"

namespace trackedcam::app {
namespace {

// What follows the prefix; nothing for a text that begins otherwise.
std::optional<std::string> After(std::string_view prefix, const std::string& text) {
  if (text.compare(0, prefix.size(), prefix) != 0) {
    return std::nullopt;
  }
  return text.substr(prefix.size());
}

void SetFromPrefix(std::optional<double>& figure, std::string_view prefix,
                   const std::string& message) {
  if (const auto rest = After(prefix, message)) {
    figure = ParseNumber(std::string_view(*rest).substr(0, rest->find(' ')));
  }
}

// Outliers are counted among the photographs that are in use.
Photograph* FindUsed(std::vector<Photograph>& photographs, int index) {
  for (Photograph& photograph : photographs) {
    if (!photograph.dropped && index-- == 0) {
      return &photograph;
    }
  }
  return nullptr;
}

}  // namespace

RunProgress::RunProgress(std::size_t rows, Listener listener)
    : rows_(rows), listener_(std::move(listener)) {}

void RunProgress::Consume(std::string_view output) {
  for (const char character : output) {
    if (character != '\n') {
      line_ += character;
      continue;
    }
    if (const auto message = LogMessage(line_)) {
      ConsumeMessage(*message);
    }
    line_.clear();
  }
}

void RunProgress::ConsumeMessage(const std::string& message) {
  // The raw data names the photographs once more: no text in it may pass for another line.
  isRawData_ = (isRawData_ || message == "RAW DATA START") && message != "RAW DATA END";
  if (isRawData_) {
    return;
  }
  record_.lastMessage = message;
  FollowStages(message);
  RecordPhotograph(message);
  RecordFigure(message);
  RecordError(message);
}

void RunProgress::FollowStages(const std::string& message) {
  if (message == "Read the csv file successfully.") {
    BeginStage("Finding the board", rows_);
  } else if (message == "Camera calibration start.") {
    BeginStage("Solving the lens", 0);
  } else if (message == "Start OrganizeRT.") {
    BeginStage("Solving the transform", 0);
  } else if (message == "Finish Calculate_Transform_Cam_Tc.") {
    BeginStage("Measuring the error", UsedPhotographs(record_).size());
  } else if (After("Mean_Transform_Chart_Tr : ", message)) {
    BeginStage("Writing the images", UsedPhotographs(record_).size());
  } else if (After("Image ", message) &&
             message.find(" reprojection error : ") != std::string::npos) {
    ShowDone(progress_.done + 1);
  }
}

void RunProgress::RecordPhotograph(const std::string& message) {
  if (const auto path = After("Process : ", message)) {
    ShowDone(record_.photographs.size());
    record_.photographs.push_back({*path, std::nullopt});
  } else if (const auto index = After("Remove index : ", message)) {
    if (Photograph* outlier = FindUsed(record_.photographs, ParseInteger(*index).value_or(-1))) {
      outlier->dropped = DropReason::kOutlier;
    }
  } else if (!record_.photographs.empty()) {
    Photograph& last = record_.photographs.back();
    if (message == last.path + " Not exist!") {
      last.dropped = DropReason::kNotLoaded;
    } else if (message == "Read " + last.path + " Failed!") {
      last.dropped = DropReason::kBoardNotFound;
    }
  }
}

void RunProgress::RecordFigure(const std::string& message) {
  if (const auto version = After("Version : ", message)) {
    record_.libraryVersion = *version;
  }
  SetFromPrefix(record_.lensError, "reprojection error : ", message);
  SetFromPrefix(record_.reprojectionError, "Average reprojection error : ", message);
  SetFromPrefix(record_.spread, "Max T_STD : ", message);
}

// "Error code 4: text"; some codes have a blank before the colon.
void RunProgress::RecordError(const std::string& message) {
  if (const auto rest = After("Error code ", message)) {
    const std::size_t colon = rest->find(": ");
    record_.errorMessage = colon == std::string::npos ? *rest : rest->substr(colon + 2);
  }
}

void RunProgress::BeginStage(const char* stage, std::size_t photographs) {
  progress_ = {stage, 0, photographs};
  listener_(progress_);
}

void RunProgress::ShowDone(std::size_t photographs) {
  progress_.done = photographs;
  listener_(progress_);
}

}  // namespace trackedcam::app
