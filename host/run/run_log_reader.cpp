#include "host/run/run_log_reader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <system_error>
#include <utility>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr int kTooFewLeft = 13;

constexpr std::size_t kLongestLine = 1 << 20;  // bytes; no line of a log is longer
constexpr std::string_view kTimeForm = "dddd-dd-dd dd:dd:dd\t";

bool BeginsWithTime(std::string_view line) {
  return line.size() >= kTimeForm.size() &&
         std::equal(kTimeForm.begin(), kTimeForm.end(), line.begin(), [](char form, char text) {
           return form == 'd' ? text >= '0' && text <= '9' : form == text;
         });
}

// The text after the prefix; nothing if it begins differently.
std::optional<std::string> After(std::string_view prefix, const std::string& text) {
  if (text.compare(0, prefix.size(), prefix) != 0) {
    return std::nullopt;
  }
  return text.substr(prefix.size());
}

// The numbers of a line, separated by blanks, commas and brackets; nothing if there is other text.
std::optional<std::vector<double>> Numbers(std::string_view text) {
  constexpr std::string_view kBetween = " ,[]()";
  std::vector<double> numbers;
  while (true) {
    text.remove_prefix(std::min(text.find_first_not_of(kBetween), text.size()));
    if (text.empty()) {
      return numbers;
    }
    const std::size_t length = std::min(text.find_first_of(kBetween), text.size());
    const auto number = ParseNumber(text.substr(0, length));
    if (!number) {
      return std::nullopt;
    }
    numbers.push_back(*number);
    text.remove_prefix(length);
  }
}

template <std::size_t N>
std::optional<std::array<double, N>> NumbersIn(std::string_view text) {
  const auto numbers = Numbers(text);
  if (!numbers || numbers->size() != N) {
    return std::nullopt;
  }
  std::array<double, N> array = {};
  std::copy(numbers->begin(), numbers->end(), array.begin());
  return array;
}

// The number between the prefix and a blank or the end.
std::optional<double> NumberAfter(std::string_view prefix, const std::string& message) {
  const auto rest = After(prefix, message);
  return rest ? ParseNumber(std::string_view(*rest).substr(0, rest->find(' '))) : std::nullopt;
}

template <class Value>
void SetFromPrefix(Value& value, std::string_view prefix, const std::string& message) {
  if (const auto number = NumberAfter(prefix, message)) {
    value = *number;
  }
}

// The corners are listed row by row from the origin; the last one gives the most exact square.
std::optional<BoardRecord> BoardOf(const std::vector<std::array<double, 2>>& corners) {
  const auto endOfRow = std::find_if(corners.begin(), corners.end(),
                                     [](const auto& corner) { return corner[1] != 0; });
  const auto columns = std::distance(corners.begin(), endOfRow);
  if (columns < 2 || endOfRow == corners.end()) {
    return std::nullopt;
  }
  return BoardRecord{static_cast<int>(columns),
                     static_cast<int>(static_cast<std::ptrdiff_t>(corners.size()) / columns),
                     corners.back()[0] / static_cast<double>(columns - 1)};
}

constexpr auto kPause = std::chrono::milliseconds(40);

bool IsLogName(const std::string& name) {
  const std::string begin = "log_";
  const std::string end = ".txt";
  return name.size() >= begin.size() + end.size() && name.compare(0, begin.size(), begin) == 0 &&
         name.compare(name.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

CalibrationOutputs OutputsOf(const RunRecord& record) {
  CalibrationOutputs outputs;
  if (const auto& lens = record.lens) {
    outputs.imageSize = {lens->width, lens->height};
    outputs.normFocal = {lens->fx / lens->width, lens->fy / lens->height};
    outputs.normCenter = {lens->cx / lens->width, lens->cy / lens->height};
    outputs.distortion = {lens->k1, lens->k2, 0, 0, 0};
    outputs.fieldOfView = {lens->horizontalFieldOfView, lens->verticalFieldOfView};
    outputs.focalLengthMm = {lens->focalLengthMm};
  }
  outputs.transformCamTc = record.transformCamTc;
  return outputs;
}

// With too few left, the filter took none away and there is no result.
bool IsUsed(const RunRecord& record, const Photograph& photograph) {
  return !photograph.dropped && record.errorCode != kTooFewLeft;
}

std::vector<std::string> UsedPhotographs(const RunRecord& record) {
  std::vector<std::string> used;
  for (const Photograph& photograph : record.photographs) {
    if (IsUsed(record, photograph)) {
      used.push_back(photograph.path);
    }
  }
  return used;
}

bool IsBoardNowhere(const RunRecord& record) {
  const auto lacksBoard = [](const Photograph& photograph) {
    return photograph.dropped == DropReason::kBoardNotFound;
  };
  return UsedPhotographs(record).empty() &&
         std::any_of(record.photographs.begin(), record.photographs.end(), lacksBoard);
}

RunLogReader::RunLogReader(std::vector<std::string> photographs, ProgressListener listener)
    : photographs_(std::move(photographs)), listener_(std::move(listener)) {}

void RunLogReader::Consume(std::string_view text) {
  for (const char character : text) {
    if (character != '\n') {
      if (line_.size() < kLongestLine) {
        line_ += character;
      }
      continue;
    }
    ConsumeLine(line_);
    line_.clear();
  }
}

void RunLogReader::ConsumeLine(std::string_view line) {
  if (!BeginsWithTime(line)) {
    return;
  }
  // The first line, which holds no path, shows which line endings the log has.
  hasCarriageReturns_ = time_.empty() ? !line.empty() && line.back() == '\r' : hasCarriageReturns_;
  if (hasCarriageReturns_ && line.back() == '\r') {
    line.remove_suffix(1);
  }
  time_ = line.substr(0, kTimeForm.size() - 1);
  ConsumeMessage(std::string(line.substr(kTimeForm.size())));
}

void RunLogReader::ConsumeMessage(const std::string& message) {
  switch (section_) {
    case Section::kOpening:
      ReadOpening(message);
      break;
    case Section::kBoard:
      ReadBoard(message);
      break;
    case Section::kPhotographs:
      ReadPhotographs(message);
      break;
    case Section::kRawData:
      ReadRawData(message);
      return;  // its lines do not say where a run stopped
    case Section::kLens:
      ReadLens(message);
      break;
    case Section::kTrackers:
      ReadTrackers(message);
      break;
  }
  record_.lastMessage = message;
}

void RunLogReader::ReadOpening(const std::string& message) {
  if (const auto version = After("Version : ", message)) {
    record_ = {};
    record_.time = time_;
    record_.libraryVersion = *version;
  } else if (message == "Flag_ModifyQuat : 1") {
    record_.invertsQuaternions = true;
  } else if (message == "CALIBRATION BOARD INDEX START") {
    boardCorners_.clear();
    section_ = Section::kBoard;
  } else if (message == "Read the csv file successfully.") {
    section_ = Section::kPhotographs;
    BeginStage("Finding the board", photographs_.size());
  }
  ReadError(message);
}

void RunLogReader::ReadBoard(const std::string& message) {
  if (message == "CALIBRATION BOARD INDEX END") {
    record_.board = BoardOf(boardCorners_);
    section_ = Section::kOpening;
  } else if (const auto corner = NumbersIn<3>(message)) {
    boardCorners_.push_back({(*corner)[0], (*corner)[1]});
  }
}

void RunLogReader::ReadPhotographs(const std::string& message) {
  std::vector<Photograph>& photographs = record_.photographs;
  if (ReadDrop(message)) {
    return;
  }
  if (const auto path = After("Process : ", message)) {
    const std::size_t index = photographs.size();
    ShowDone(index, index < photographs_.size() ? photographs_[index] : *path);
    photographs.push_back({*path, std::nullopt, std::nullopt});
  } else if (message == "RAW DATA START") {
    section_ = Section::kRawData;
    rawPath_.clear();
    rawData_.clear();
  } else if (After("Version : ", message)) {  // an exception ended the run before
    section_ = Section::kOpening;
    ReadOpening(message);
  } else if (After("The amount of useful data is too small.", message)) {
    NamePhotographs();
  } else {
    ReadError(message);
  }
}

// Whether the line says why the photograph was dropped.
bool RunLogReader::ReadDrop(const std::string& message) {
  if (record_.photographs.empty() || record_.photographs.back().dropped) {
    return false;
  }
  Photograph& last = record_.photographs.back();
  if (message == last.path + " Not exist!") {
    last.dropped = DropReason::kNotLoaded;
  } else if (message == "Read " + last.path + " Failed!") {
    last.dropped = DropReason::kBoardNotFound;
  }
  return last.dropped.has_value();
}

// A name may look like a line of the log, so the names of the data file are used.
void RunLogReader::NamePhotographs() {
  if (photographs_.empty()) {
    return;
  }
  std::map<std::string, std::optional<DropReason>> reasons;
  for (const Photograph& photograph : record_.photographs) {
    reasons[photograph.path] = photograph.dropped;
  }
  record_.photographs.clear();
  for (const std::string& path : photographs_) {
    record_.photographs.push_back({path, reasons[path], std::nullopt});
  }
}

// For each photograph: a line with its path, one with its row, one for each corner.
void RunLogReader::ReadRawData(const std::string& message) {
  const std::size_t corners = boardCorners_.size();
  if (!rawData_.empty() && rawData_.back().raw->corners.size() < corners) {
    rawData_.back().raw->corners.push_back(NumbersIn<2>(message).value_or(std::array<double, 2>{}));
  } else if (rawPath_.empty()) {
    rawPath_ = message;
  } else if (const auto row = NumbersIn<15>(message)) {
    rawData_.push_back({rawPath_, std::nullopt, RawData{*row, {}}});
    rawPath_.clear();
  } else {  // no row: the line before was "RAW DATA END"
    EndRawData();
    section_ = Section::kLens;
    ConsumeMessage(message);
  }
}

// The photographs in use are those with raw data.
void RunLogReader::EndRawData() {
  NamePhotographs();
  std::map<std::string, std::vector<RawData*>> rawByPath;
  for (auto photograph = rawData_.rbegin(); photograph != rawData_.rend(); ++photograph) {
    rawByPath[photograph->path].push_back(&*photograph->raw);
  }
  for (Photograph& photograph : record_.photographs) {
    std::vector<RawData*>& raw = rawByPath[photograph.path];
    if (raw.empty()) {
      photograph.dropped = photograph.dropped.value_or(DropReason::kNotLoaded);
    } else {
      photograph.dropped = std::nullopt;
      photograph.raw = std::move(*raw.back());
      raw.pop_back();
    }
  }
}

void RunLogReader::ReadLens(const std::string& message) {
  SetFromPrefix(record_.lensError, "reprojection error : ", message);
  SetFromPrefix(lens_.fx, "Fx : ", message);
  SetFromPrefix(lens_.fy, "Fy : ", message);
  SetFromPrefix(lens_.cx, "Cx : ", message);
  SetFromPrefix(lens_.cy, "Cy : ", message);
  SetFromPrefix(lens_.width, "Image Width : ", message);
  SetFromPrefix(lens_.height, "Image Height : ", message);
  SetFromPrefix(lens_.horizontalFieldOfView, "FoV_H : ", message);
  SetFromPrefix(lens_.verticalFieldOfView, "FoV_V : ", message);
  SetFromPrefix(lens_.focalLengthMm, "Focal length (mm) : ", message);
  if (const auto rest = After("Distortion (k1, k2, p1, p2, k3) : ", message)) {
    const auto distortion = NumbersIn<5>(*rest).value_or(std::array<double, 5>{});
    lens_.k1 = distortion[0];
    lens_.k2 = distortion[1];
  }
  if (message == "Camera calibration start.") {
    lens_ = {};
    BeginStage("Solving the lens", 0);
  } else if (message == "Start OrganizeRT.") {  // the lens is accepted and complete
    record_.lens = lens_;
    section_ = Section::kTrackers;
    isSecondSolve_ = false;
    BeginStage("Solving the transform", 0);
  } else if (After("Version : ", message)) {  // an exception ended the run before
    section_ = Section::kOpening;
    ReadOpening(message);
  }
  ReadError(message);
}

void RunLogReader::ReadTrackers(const std::string& message) {
  if (matrixRows_ > 0) {
    --matrixRows_;
    const auto row = NumbersIn<4>(message).value_or(std::array<double, 4>{});
    record_.transformCamTc.insert(record_.transformCamTc.end(), row.begin(), row.end());
    return;
  }
  if (message == "Mean_Transform_Cam_Tc : " && isSecondSolve_) {
    record_.transformCamTc.clear();
    matrixRows_ = 4;
  } else if (message == "Finish Calculate_Transform_Cam_Tc.") {
    isSecondSolve_ = false;
    BeginStage("Measuring the error", UsedPhotographs(record_).size());
  } else if (message == "Mean_Transform_Chart_Tr : ") {
    isSecondSolve_ = true;
    BeginStage("Writing the images", UsedPhotographs(record_).size());
  } else if (ReadImageError(message)) {
    const Photograph* next = InUse(static_cast<int>(progress_.done) + 1);
    ShowDone(progress_.done + 1, next == nullptr ? "" : next->path);
  } else if (const auto index = After("Remove index : ", message)) {
    if (Photograph* outlier = InUse(ParseInteger(*index).value_or(-1))) {
      outlier->dropped = DropReason::kOutlier;
    }
  } else if (After("Version : ", message)) {  // the log holds another run
    section_ = Section::kOpening;
    ReadOpening(message);
  }
  SetFromPrefix(record_.reprojectionError, "Average reprojection error : ", message);
  SetFromPrefix(record_.spread, "Max T_STD : ", message);
  record_.isSuccessful = message == "Camera and Tracker Calibration successful.";
  ReadError(message);
}

// "Image 3 reprojection error : 0.25 pixels."
bool RunLogReader::ReadImageError(const std::string& message) {
  const auto rest = After("Image ", message);
  if (!rest) {
    return false;
  }
  constexpr std::string_view kBefore = " reprojection error : ";
  const std::size_t end = rest->find(kBefore);
  if (end != std::string::npos) {
    if (Photograph* photograph = InUse(ParseInteger(rest->substr(0, end)).value_or(-1))) {
      photograph->errorPixels = NumberAfter(kBefore, rest->substr(end));
    }
  }
  return true;
}

// The lines of the solves count only the photographs in use. Null if there is none.
Photograph* RunLogReader::InUse(int index) {
  for (Photograph& photograph : record_.photographs) {
    if (!photograph.dropped && index-- == 0) {
      return &photograph;
    }
  }
  return nullptr;
}

// "Error code 4: text"; some codes have a blank before the colon.
void RunLogReader::ReadError(const std::string& message) {
  if (const auto rest = After("Error code ", message)) {
    const std::size_t colon = rest->find(": ");
    record_.errorMessage = colon == std::string::npos ? *rest : rest->substr(colon + 2);
    record_.errorCode = ParseInteger(std::string_view(*rest).substr(0, rest->find_first_of(" :")));
  }
}

void RunLogReader::BeginStage(const char* stage, std::size_t photographs) {
  progress_ = {stage, 0, photographs};
  listener_(progress_);
}

void RunLogReader::ShowDone(std::size_t photographs, const std::string& inWork) {
  progress_.done = photographs;
  progress_.photograph = inWork;
  listener_(progress_);
}

RunRecord ReadRunLog(std::istream& log) {
  RunLogReader reader;
  std::array<char, 65536> piece = {};
  while (log) {
    log.read(piece.data(), piece.size());
    reader.Consume({piece.data(), static_cast<std::size_t>(log.gcount())});
  }
  return reader.Record();
}

fs::path FindLog(const fs::path& folder) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (entry.is_regular_file(error) && IsLogName(entry.path().filename().u8string())) {
      return entry.path();
    }
  }
  return {};
}

LogFollower::LogFollower(fs::path folder, std::vector<std::string> photographs,
                         ProgressListener listener)
    : folder_(std::move(folder)),
      reader_(std::move(photographs), std::move(listener)),
      thread_([this, stopped = stop_.get_future()] {
        // An exception, of the listener or for lack of memory, must not end the process. The run
        // goes on, and its record is what was read so far.
        try {
          while (stopped.wait_for(kPause) == std::future_status::timeout) {
            ReadMore();
          }
        } catch (const std::exception&) {
        }
      }) {}

LogFollower::~LogFollower() {
  if (thread_.joinable()) {
    stop_.set_value();
    thread_.join();
  }
}

RunRecord LogFollower::Stop() {
  stop_.set_value();
  thread_.join();
  ReadMore();
  return reader_.Record();
}

void LogFollower::ReadMore() {
  if (log_.empty()) {
    log_ = FindLog(folder_);
  }
  std::ifstream log(log_, std::ios::binary);
  log.seekg(position_);
  std::array<char, 65536> piece = {};
  while (log) {
    log.read(piece.data(), piece.size());
    position_ += log.gcount();
    reader_.Consume({piece.data(), static_cast<std::size_t>(log.gcount())});
  }
}

}  // namespace trackedcam::host
