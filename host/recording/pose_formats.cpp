#include "host/recording/pose_formats.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <fstream>
#include <functional>
#include <system_error>
#include <vector>

#include "host/input/data_file.h"
#include "host/input/input_error.h"
#include "host/recording/opentrackio_samples.h"
#include "host/text/text.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMostRecordingBytes = std::uintmax_t{2} << 30;
constexpr std::size_t kMostPoses = 10'000'000;  // more than 11 hours at 240 Hz
constexpr std::size_t kLongestPoseLine = 1 << 16;

// The lines of a file, one in memory at a time.
class Lines {
 public:
  explicit Lines(const fs::path& file) : buffer_(kLongestPoseLine, '\0') {
    std::error_code error;
    if (!fs::exists(file, error)) {
      throw InputError("file not found");
    }
    if (!fs::is_regular_file(file, error)) {
      throw InputError("not a regular file");
    }
    if (fs::file_size(file, error) > kMostRecordingBytes) {
      throw InputError("larger than " + std::to_string(kMostRecordingBytes >> 30) +
                       " GB: cut out the part that belongs to the film");
    }
    stream_.open(file, std::ios::binary);
    if (!stream_) {
      throw InputError("cannot be read: check its permissions");
    }
  }

  /// Goes to the next line that is not blank.
  bool Next() {
    while (ReadLine()) {
      if (!Trim(line_).empty()) {
        return true;
      }
    }
    return false;
  }

  /// Without blanks around it, but with tabs, which may separate empty fields.
  std::string_view Line() const { return line_; }
  std::size_t Number() const { return number_; }
  /// Whether it is the last one and has no line end: its writer may have been stopped.
  bool MayBeCut() const { return stream_.eof(); }

 private:
  bool ReadLine() {
    ++number_;
    stream_.getline(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
    const auto count = static_cast<std::size_t>(stream_.gcount());
    if (stream_.bad()) {
      throw InputError("cannot be read to its end");
    }
    if (stream_.fail() && count > 0) {
      throw InputError("line " + std::to_string(number_) + ": longer than " +
                       std::to_string(kLongestPoseLine) + " characters");
    }
    if (stream_.fail()) {
      return false;
    }
    line_ = std::string_view(buffer_.data(), stream_.eof() ? count : count - 1);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (number_ == 1 && line_.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
      line_.remove_prefix(kByteOrderMark.size());
    }
    constexpr const char* kBlanks = " \r";
    line_.remove_prefix(std::min(line_.find_first_not_of(kBlanks), line_.size()));
    line_ = line_.substr(0, line_.find_last_not_of(kBlanks) + 1);
    return true;
  }

  std::ifstream stream_;
  std::string buffer_;
  std::string_view line_;
  std::size_t number_ = 0;
};

constexpr std::size_t kValues = 8;
constexpr std::array<const char*, kValues> kValueNames = {"time", "x",  "y",  "z",
                                                          "qw",   "qx", "qy", "qz"};

/// Which field of a line has which value.
struct FieldLayout {
  std::array<std::size_t, kValues> places;  // in the order of kValueNames
  std::size_t fields = kValues;             // of a line
  char separator = ',';                     // a blank for any number of blanks and tabs
  std::optional<TimeUnit> timeUnit;         // if the file states it
  const TrackerUnit* unit = nullptr;        // of the positions, if the file states it
};

std::vector<std::string_view> SplitAtBlanks(std::string_view line) {
  std::vector<std::string_view> fields;
  line = Trim(line);
  while (!line.empty()) {
    const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
    fields.push_back(line.substr(0, end));
    line = Trim(line.substr(end));
  }
  return fields;
}

std::string_view Unquoted(std::string_view field) {
  field = Trim(field);
  const bool isQuoted = field.size() >= 2 && field.front() == '"' && field.back() == '"';
  return isQuoted ? Trim(field.substr(1, field.size() - 2)) : field;
}

std::vector<std::string_view> Split(std::string_view line, char separator) {
  if (separator == ' ') {
    return SplitAtBlanks(line);
  }
  std::vector<std::string_view> fields = SplitFields(line, separator);
  std::transform(fields.begin(), fields.end(), fields.begin(), Unquoted);
  return fields;
}

std::string_view WithoutCommentSign(std::string_view header) {
  return Trim(header.substr(header.substr(0, 1) == "#" ? 1 : 0));
}

char SeparatorIn(std::string_view header) {
  const auto count = [header](char separator) {
    return std::count(header.begin(), header.end(), separator);
  };
  const std::array<char, 3> separators = {',', ';', '\t'};
  return *std::max_element(separators.begin(), separators.end(),
                           [&](char first, char second) { return count(first) < count(second); });
}

// "Pos_X [mm]" is "posx" in mm, and so is "pos_x_mm".
struct Title {
  std::string name;  // letters and digits, small
  std::string unit;  // empty if there is none
};

bool IsUnit(std::string_view text) {
  const auto isNamed = [text](const TrackerUnit& unit) { return text == unit.name; };
  return ParseTimeUnit(text) || std::any_of(kTrackerUnits.begin(), kTrackerUnits.end(), isNamed);
}

Title TitleOf(std::string_view field) {
  Title title;
  const std::size_t bracket = field.find_first_of("[(");
  if (bracket != std::string_view::npos) {
    const std::string_view inside = field.substr(bracket + 1);
    title.unit = std::string(Trim(inside.substr(0, inside.find_first_of("])"))));
    field = field.substr(0, bracket);
  } else if (const std::size_t last = field.find_last_of("_ ");
             last != std::string_view::npos && IsUnit(field.substr(last + 1))) {
    title.unit = std::string(field.substr(last + 1));
    field = field.substr(0, last);
  }
  for (const char character : field) {
    if (std::isalnum(static_cast<unsigned char>(character)) != 0) {
      title.name += static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    }
  }
  return title;
}

bool IsNamed(const Title& title, std::size_t value) {
  const std::string name = kValueNames[value];
  std::vector<std::string> names;
  if (value == 0) {
    names = {"time", "t", "timestamp", "stamp"};
  } else if (value < 4) {
    names = {name, "t" + name, "p" + name, "pos" + name, "position" + name};
  } else {
    const std::string axis = name.substr(1);
    names = {name, "quat" + axis, "quaternion" + axis, "rot" + axis, "orientation" + axis};
  }
  return std::find(names.begin(), names.end(), title.name) != names.end();
}

// The only field for which this holds.
template <class Predicate>
std::optional<std::size_t> OnlyField(const std::vector<std::string_view>& fields,
                                     const Predicate& holds) {
  const auto found = std::find_if(fields.begin(), fields.end(), holds);
  if (found == fields.end() || std::find_if(found + 1, fields.end(), holds) != fields.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(found - fields.begin());
}

void ReadUnits(const std::vector<std::string_view>& titles, FieldLayout& layout) {
  layout.timeUnit = ParseTimeUnit(TitleOf(titles[layout.places[0]]).unit);
  const std::string length = TitleOf(titles[layout.places[1]]).unit;
  for (const TrackerUnit& unit : kTrackerUnits) {
    layout.unit = length == unit.name ? &unit : layout.unit;
  }
}

// The layout of a table in which each value has one title for which this holds.
template <class Predicate>
std::optional<FieldLayout> LayoutWith(std::string_view header, const Predicate& isTitleOf) {
  FieldLayout layout;
  const std::string_view text = WithoutCommentSign(header);
  layout.separator = SeparatorIn(text);
  const std::vector<std::string_view> titles = Split(text, layout.separator);
  layout.fields = titles.size();
  for (std::size_t value = 0; value < kValues; ++value) {
    const auto place =
        OnlyField(titles, [&](std::string_view title) { return isTitleOf(title, value); });
    if (!place) {
      return std::nullopt;
    }
    layout.places[value] = *place;
  }
  ReadUnits(titles, layout);
  return layout;
}

std::optional<FieldLayout> LayoutOf(std::string_view header, const PoseFormat& format) {
  if (!format.columns) {
    return LayoutWith(header, [](std::string_view title, std::size_t value) {
      return IsNamed(TitleOf(title), value);
    });
  }
  const PoseColumns& columns = *format.columns;
  const std::array<std::string_view, kValues> names = {columns.time, columns.x,  columns.y,
                                                       columns.z,    columns.qw, columns.qx,
                                                       columns.qy,   columns.qz};
  return LayoutWith(header, [&names](std::string_view title, std::size_t value) {
    return title == Trim(names[value]);
  });
}

bool IsComment(std::string_view line) {
  return !line.empty() && line.front() == '#';
}

// "#timestamp [ns], p_RS_R_x [m], ..., q_RS_w [], ...": the frames in the names vary.
bool IsEurocHeader(std::string_view line) {
  const std::string_view text = IsComment(line) ? WithoutCommentSign(line) : std::string_view();
  const std::vector<std::string_view> titles = SplitFields(text, ',');
  bool isHeader = titles.size() >= kValues && TitleOf(titles[0]).name == "timestamp";
  for (std::size_t value = 1; value < kValues && isHeader; ++value) {
    const std::string name = TitleOf(titles[value]).name;
    const char axis = std::string_view(kValueNames[value]).back();
    isHeader = name.size() > 2 && name.front() == (value < 4 ? 'p' : 'q') && name.back() == axis;
  }
  return isHeader;
}

FieldLayout EurocLayout(std::string_view firstLine) {
  const std::vector<std::string_view> fields = Split(firstLine, ',');
  if (fields.size() < kValues) {
    throw InputError(std::to_string(fields.size()) + " values, expected at least 8");
  }
  return {{0, 1, 2, 3, 4, 5, 6, 7}, fields.size(), ',', TimeUnit::kNanoseconds, nullptr};
}

FieldLayout TumLayout() {
  return {{0, 1, 2, 3, 7, 4, 5, 6}, kValues, ' ', std::nullopt, nullptr};
}

bool IsTum(std::string_view line) {
  const std::vector<std::string_view> fields = SplitAtBlanks(line);
  return fields.size() == kValues &&
         std::none_of(fields.begin(), fields.end(),
                      [](std::string_view field) { return KindOf(field) == FieldKind::kText; });
}

/// Reads lines with one value in each field.
class FieldReader {
 public:
  FieldReader(const FieldLayout& layout, const PoseFormat& format)
      : layout_(layout),
        timeUnit_(format.timeUnit.value_or(layout.timeUnit.value_or(TimeUnit::kSeconds))) {
    const TrackerUnit* unit = format.unit != nullptr ? format.unit : layout.unit;
    unitsPerMetre_ = unit != nullptr ? unit->unitsPerMetre : 1;
  }

  std::optional<StampedPose> Read(std::string_view line) const {
    std::vector<std::string_view> fields = Split(line, layout_.separator);
    if (fields.size() == layout_.fields + 1 && fields.back().empty()) {
      fields.pop_back();  // a separator at the end
    }
    if (fields.size() != layout_.fields) {
      throw InputError(std::to_string(fields.size()) + " values, expected " +
                       std::to_string(layout_.fields));
    }
    std::array<double, kValues> values = {};
    bool isComplete = true;
    for (std::size_t i = 0; i < kValues; ++i) {
      const std::string_view field = fields[layout_.places[i]];
      const FieldKind kind = KindOf(field);
      if (kind == FieldKind::kText) {
        throw InputError('"' + Excerpt(field) + "\" is not a number");
      }
      isComplete = isComplete && kind == FieldKind::kNumber;
      values[i] = NumberIn(field);
    }
    const auto time = ParseNanoseconds(fields[layout_.places[0]], timeUnit_);
    if (!isComplete || !time) {
      return std::nullopt;
    }
    StampedPose stamped;
    stamped.nanoseconds = *time;
    stamped.pose.position = Eigen::Vector3d(values[1], values[2], values[3]) / unitsPerMetre_;
    stamped.pose.quaternionWxyz = {values[4], values[5], values[6], values[7]};
    return stamped;
  }

 private:
  static std::string Excerpt(std::string_view text) {
    constexpr std::size_t kMost = 40;
    return std::string(text.substr(0, kMost)) + (text.size() > kMost ? "..." : "");
  }

  FieldLayout layout_;
  TimeUnit timeUnit_;
  double unitsPerMetre_ = 1;
};

using LineReader = std::function<std::optional<StampedPose>(std::string_view line)>;

/// A reader of lines, and whether the first line is a header.
struct Opened {
  LineReader read;
  bool isFirstLineRead = false;    // it has no pose
  bool isTimeUnitAssumed = false;  // nobody states it
};

Opened WithLayout(const FieldLayout& layout, bool hasHeader, const PoseFormat& format) {
  Opened opened;
  opened.read = [reader = FieldReader(layout, format)](std::string_view line) {
    return reader.Read(line);
  };
  opened.isFirstLineRead = hasHeader;
  opened.isTimeUnitAssumed = !format.timeUnit && !layout.timeUnit;
  return opened;
}

Opened OpenTable(std::string_view header, const PoseFormat& format) {
  const auto layout = LayoutOf(header, format);
  if (!layout) {
    throw InputError(format.columns
                         ? "the header does not have each of the stated columns once"
                         : "the header does not have time, x, y, z, qw, qx, qy and qz once each: "
                           "state the columns");
  }
  return WithLayout(*layout, true, format);
}

PoseFileKind KindOfFirst(std::string_view line, const PoseFormat& format) {
  if (line.front() == '{') {
    return PoseFileKind::kOpenTrackIo;
  }
  if (IsEurocHeader(line)) {
    return PoseFileKind::kEuroc;
  }
  if (LayoutOf(line, format)) {
    return PoseFileKind::kColumns;
  }
  if (IsTum(line)) {
    return PoseFileKind::kTum;
  }
  throw InputError(
      "the format is not recognised: state it (tum, euroc, opentrackio or csv), or the columns of "
      "a table");
}

// The format shows in the first line that is not a comment; a header may look like one.
bool IsOnlyComment(std::string_view line, const PoseFormat& format) {
  return IsComment(line) && !IsEurocHeader(line) && !LayoutOf(line, format);
}

Opened Open(std::string_view firstLine, const PoseFormat& format) {
  const PoseFileKind kind = format.columns ? PoseFileKind::kColumns
                            : format.kind  ? *format.kind
                                           : KindOfFirst(firstLine, format);
  switch (kind) {
    case PoseFileKind::kTum:
      return WithLayout(TumLayout(), false, format);
    case PoseFileKind::kEuroc:
      return WithLayout(EurocLayout(firstLine), false, format);
    case PoseFileKind::kColumns:
      return OpenTable(firstLine, format);
    case PoseFileKind::kOpenTrackIo:
      break;
  }
  Opened opened;
  opened.read = [samples = OpenTrackIoSamples()](std::string_view line) mutable {
    return samples.Read(line);
  };
  return opened;
}

bool IsTracked(const crosscheck::TrackerPose& pose) {
  return pose.position.allFinite() && pose.quaternionWxyz.allFinite() &&
         !pose.quaternionWxyz.isZero(0);
}

/// Collects poses by rising time.
class Recorder {
 public:
  void Add(const std::optional<StampedPose>& stamped) {
    if (!stamped || !IsTracked(stamped->pose)) {
      ++recording_.unreadable;
    } else if (recording_.poses.empty()) {
      first_ = stamped->nanoseconds;
      recording_.firstStamp = Seconds(first_);
      Append(*stamped);
    } else if (stamped->nanoseconds == last_) {
      ++recording_.repeatedStamps;
    } else if (stamped->nanoseconds < last_) {
      ++recording_.fallingStamps;
    } else if (recording_.poses.size() == kMostPoses) {
      throw InputError("more than " + std::to_string(kMostPoses) +
                       " poses: cut out the part that belongs to the film");
    } else {
      Append(*stamped);
    }
  }

  const PoseRecording& Recording() const { return recording_; }

 private:
  void Append(const StampedPose& stamped) {
    last_ = stamped.nanoseconds;
    recording_.poses.push_back({Seconds(last_ - first_), stamped.pose});
  }

  PoseRecording recording_;
  std::int64_t first_ = 0;
  std::int64_t last_ = 0;
};

void RequirePoses(const PoseRecording& recording) {
  const std::size_t poses = recording.poses.size();
  if (poses >= 2) {
    return;
  }
  std::string text = poses == 0 ? "has no pose that can be used" : "has one pose only";
  text += ", expected a recording";
  const auto add = [&text](std::size_t count, const char* what) {
    text += count > 0 ? "; left out: " + std::to_string(count) + ' ' + what : "";
  };
  add(recording.unreadable, "with missing or invalid values");
  add(recording.repeatedStamps, "with a repeated time");
  add(recording.fallingStamps, "with an earlier time");
  throw InputError(text);
}

// Times in milliseconds that are taken for seconds make a pose every few seconds.
void RequirePlausibleUnit(const PoseRecording& recording) {
  constexpr double kMostSeconds = 2;
  std::vector<double> steps;
  for (std::size_t i = 1; i < recording.poses.size(); ++i) {
    steps.push_back(recording.poses[i].seconds - recording.poses[i - 1].seconds);
  }
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::nth_element(steps.begin(), middle, steps.end());
  if (*middle > kMostSeconds) {
    throw InputError("the poses are " + Shortest(*middle) +
                     " s apart if the times are in seconds: state the unit of the times (s, ms, us "
                     "or ns)");
  }
}

template <class Action>
auto AtLine(const Lines& lines, const Action& action) {
  try {
    return action();
  } catch (const InputError& error) {
    throw InputError("line " + std::to_string(lines.Number()) + ": " + error.what());
  }
}

void AddLine(Lines& lines, const LineReader& read, Recorder& recorder) {
  try {
    recorder.Add(read(lines.Line()));
  } catch (const InputError&) {
    if (!lines.MayBeCut()) {
      throw;
    }
    recorder.Add(std::nullopt);
  }
}

PoseRecording Read(Lines& lines, const PoseFormat& format) {
  do {
    if (!lines.Next()) {
      throw InputError("it has no poses");
    }
  } while (IsOnlyComment(lines.Line(), format));
  const Opened opened = AtLine(lines, [&] { return Open(lines.Line(), format); });
  Recorder recorder;
  for (bool isLine = !opened.isFirstLineRead || lines.Next(); isLine; isLine = lines.Next()) {
    if (!IsComment(lines.Line())) {
      AtLine(lines, [&] { AddLine(lines, opened.read, recorder); });
    }
  }
  RequirePoses(recorder.Recording());
  if (opened.isTimeUnitAssumed) {
    RequirePlausibleUnit(recorder.Recording());
  }
  return recorder.Recording();
}

}  // namespace

std::optional<PoseFileKind> ParsePoseFileKind(std::string_view name) {
  if (name == "tum") {
    return PoseFileKind::kTum;
  }
  if (name == "euroc") {
    return PoseFileKind::kEuroc;
  }
  if (name == "opentrackio") {
    return PoseFileKind::kOpenTrackIo;
  }
  return name == "csv" ? std::optional<PoseFileKind>(PoseFileKind::kColumns) : std::nullopt;
}

PoseColumns ParsePoseColumns(const std::string& text) {
  PoseColumns columns;
  const std::array<std::string*, kValues> names = {&columns.time, &columns.x,  &columns.y,
                                                   &columns.z,    &columns.qw, &columns.qx,
                                                   &columns.qy,   &columns.qz};
  for (const std::string_view part : SplitFields(text)) {
    const std::size_t equals = std::min(part.find('='), part.size());
    const std::string_view value = Trim(part.substr(0, equals));
    const std::string_view name = equals < part.size() ? Trim(part.substr(equals + 1)) : "";
    const auto place = static_cast<std::size_t>(std::distance(
        kValueNames.begin(), std::find(kValueNames.begin(), kValueNames.end(), value)));
    if (place == kValueNames.size() || name.empty()) {
      throw InputError('"' + std::string(part) +
                       "\" is not a column such as time=Time, x=Cam.X or qw=Cam.QW");
    }
    std::string& column = *names.at(place);
    if (!column.empty()) {
      throw InputError("two columns for " + std::string(value));
    }
    column = name;
  }
  for (std::size_t value = 0; value < kValues; ++value) {
    if (names[value]->empty()) {
      throw InputError(std::string("no column for ") + kValueNames[value] +
                       ": state time, x, y, z, qw, qx, qy and qz");
    }
  }
  return columns;
}

PoseRecording ReadPoseRecording(const fs::path& file, const PoseFormat& format) {
  try {
    if (format.columns && format.kind && *format.kind != PoseFileKind::kColumns) {
      throw InputError("columns are stated, but the stated format is not csv");
    }
    Lines lines(file);
    return Read(lines, format);
  } catch (const InputError& error) {
    throw InputError(file.u8string() + ": " + error.what());
  }
}

}  // namespace trackedcam::host
