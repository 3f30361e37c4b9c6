#include "simulator/write_shoot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <nlohmann/json.hpp>
#include <opencv2/imgcodecs.hpp>

#include "simulator/decimals.h"
#include "simulator/mounting.h"
#include "simulator/rendering.h"

namespace trackedcam::simulator {
namespace {

using Json = nlohmann::ordered_json;
namespace fs = std::filesystem;

constexpr const char* kHeader =
    "Time,Photograph,"
    "Tc x,Tc y,Tc z,Tc qw,Tc qx,Tc qy,Tc qz,"
    "Tr x,Tr y,Tr z,Tr qw,Tr qx,Tr qy,Tr qz";
constexpr const char* kByteOrderMark = "\xEF\xBB\xBF";

// The tracking system reports other axes of a tracker: its x, y, z are -x, -z, -y here.
Eigen::Isometry3d InReportedAxes(const Eigen::Isometry3d& pose) {
  Eigen::Matrix3d axes;
  axes << -1, 0, 0, 0, 0, -1, 0, -1, 0;
  Eigen::Isometry3d reported = pose;
  reported.linear() = pose.linear() * axes;
  return reported;
}

std::string PoseText(const Eigen::Isometry3d& pose, bool invertedQuaternion) {
  const Eigen::Isometry3d reported = InReportedAxes(pose);
  Eigen::Quaterniond rotation(reported.linear());
  if (invertedQuaternion) {
    rotation = rotation.conjugate();
  }
  const Eigen::Vector3d position = reported.translation();
  std::string text;
  for (const double number : {position.x(), position.y(), position.z(), rotation.w(), rotation.x(),
                              rotation.y(), rotation.z()}) {
    text += ',' + ToFixedText(number, 12);
  }
  return text;
}

std::string Triple(const Eigen::Vector3d& numbers) {
  return ToShortestText(numbers.x()) + ',' + ToShortestText(numbers.y()) + ',' +
         ToShortestText(numbers.z());
}

std::string Line(const std::string& key, const std::string& value) {
  return key + " = " + value + '\n';
}

std::string Quoted(const std::string& text) {
  return '"' + text + '"';
}

Json Numbers(const Eigen::Vector3d& vector) {
  return {vector.x(), vector.y(), vector.z()};
}

Json Numbers(const Eigen::Isometry3d& transform) {
  Json numbers = Json::array();
  for (int row = 0; row < 4; ++row) {
    for (int col = 0; col < 4; ++col) {
      numbers.push_back(transform(row, col));
    }
  }
  return numbers;
}

Json MountingJson(const Mounting& mounting) {
  return {{"rotationDegrees", Numbers(mounting.anglesDegrees)},
          {"translationMetres", Numbers(mounting.translationMetres)},
          {"transformTrChart", Numbers(mounting.Transform())}};
}

// What the calibration's model leaves out; its lens is in "distortion".
Json FlawsJson(const ShootOptions& options) {
  return {{"printStretch", options.chart.stretch},
          {"chartBowMetres", options.chart.bowMetres},
          {"noiseCorrelation", options.noiseCorrelation},
          {"trackerScale", options.trackerScale},
          {"volumeBendMm", options.volumeBendMm},
          {"poseErrorMm", options.poseErrorMm},
          {"poseErrorDegrees", options.poseErrorDegrees},
          {"delayMs", options.delayMs},
          {"exposureMs", options.exposureMs},
          {"tremorMmPerSecond", options.tremorMmPerSecond},
          {"sagMm", options.sagMm},
          {"looseMm", options.looseMm},
          {"frozenRows", options.frozenRows},
          {"heldPoses", options.heldPoses},
          {"repeatedRows", options.repeatedRows},
          {"turntable", options.turntable}};
}

double FieldOfViewDegrees(double pixels, double focal) {
  return Degrees(2 * std::atan(pixels / (2 * focal)));
}

const char* Reason(Flaw flaw) {
  switch (flaw) {
    case Flaw::kMissing:
      return "missing";
    case Flaw::kNotAnImage:
      return "not an image";
    case Flaw::kWithoutChart:
      return "without chart";
    case Flaw::kSlippedTracker:
      return "slipped tracker";
    case Flaw::kNone:
      break;
  }
  return "";
}

void ListPhotographs(const Shoot& shoot, Json& truth) {
  for (const Photograph& photograph : shoot.photographs) {
    truth["photographs"].push_back({{"photograph", photograph.path},
                                    {"transformCamChart", Numbers(photograph.Transform_Cam_Chart)},
                                    {"transformBaseTc", Numbers(photograph.Transform_Base_Tc)},
                                    {"transformBaseTr", Numbers(photograph.Transform_Base_Tr)}});
    if (photograph.isFrozen) {
      truth["frozen"].push_back(photograph.path);
    }
    if (photograph.flaw == Flaw::kSlippedTracker) {
      truth["outliers"].push_back(photograph.path);
    } else if (photograph.flaw != Flaw::kNone) {
      truth["unusable"].push_back(
          {{"photograph", photograph.path}, {"reason", Reason(photograph.flaw)}});
    }
  }
}

constexpr const char* kListName = "simulated.txt";
constexpr const char* kPartName = ".simulated.part";

// FNV-1a. It detects changes, not forgeries.
std::string HashOf(std::istream& content) {
  constexpr std::uint64_t kPrime = 1099511628211U;
  std::uint64_t hash = 14695981039346656037U;
  std::array<char, 65536> piece = {};
  while (content) {
    content.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    for (std::streamsize i = 0; i < content.gcount(); ++i) {
      hash = (hash ^ static_cast<unsigned char>(piece[static_cast<std::size_t>(i)])) * kPrime;
    }
  }
  std::array<char, 17> digits = {};
  std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
  return digits.data();
}

std::string HashOf(const std::string& content) {
  std::istringstream stream(content);
  return HashOf(stream);
}

// The lines of the list of what was simulated: a hash, two blanks and a name.
std::set<std::string> ReadList(const fs::path& folder) {
  std::ifstream file(folder / kListName, std::ios::binary);
  std::set<std::string> lines;
  for (std::string line; std::getline(file, line);) {
    lines.insert(line);
  }
  return lines;
}

std::string LineOf(const std::string& hash, const std::string& name) {
  return hash + "  " + name;
}

// Beside the file and then in its place, so that its other names (hard links) keep what they had.
// Binary, so that line ends are not converted.
void WriteFile(const fs::path& path, const std::string& content) {
  const fs::path part = path.parent_path() / kPartName;
  std::error_code error;
  fs::remove(part, error);
  std::ofstream file(part, std::ios::binary);
  file << content;
  file.close();
  if (file) {
    fs::rename(part, path, error);
  }
  if (!file || error) {
    fs::remove(part, error);
    throw std::runtime_error("Cannot write " + path.u8string() +
                             ": check the folder's permissions and the free disk space.");
  }
}

/// Writes the files of a shoot, and the list of them: each is listed before it exists, so that an
/// incomplete shoot is recognised too.
class ShootFiles {
 public:
  explicit ShootFiles(const fs::path& folder) : folder_(folder), earlier_(ReadList(folder)) {
    WriteFile(folder / kListName, ListOf(earlier_));
  }

  void Write(const std::string& name, const std::string& content) {
    const std::string line = LineOf(HashOf(content), name);
    std::ofstream list(folder_ / kListName, std::ios::binary | std::ios::app);
    list << line << '\n' << std::flush;
    WriteFile(folder_ / fs::u8path(name), content);
    written_[name] = line;
  }

  void Remove(const std::string& name) { fs::remove(folder_ / fs::u8path(name)); }

  /// With those files of an earlier shoot that this one did not replace.
  void Finish() {
    std::set<std::string> lines;
    for (const std::string& line : earlier_) {
      if (line.size() > kNamePlace && written_.count(line.substr(kNamePlace)) == 0) {
        lines.insert(line);
      }
    }
    for (const auto& [name, line] : written_) {
      lines.insert(line);
    }
    WriteFile(folder_ / kListName, ListOf(lines));
  }

 private:
  static constexpr std::size_t kNamePlace = 18;  // in a line

  static std::string ListOf(const std::set<std::string>& lines) {
    std::string list;
    for (const std::string& line : lines) {
      list += line + '\n';
    }
    return list;
  }

  fs::path folder_;
  std::set<std::string> earlier_;               // lines
  std::map<std::string, std::string> written_;  // name and line
};

// Encoded in memory, because the image library cannot open every path.
std::string Jpeg(const cv::Mat& picture, int quality) {
  std::vector<unsigned char> bytes;
  cv::imencode(".jpg", picture, bytes, {cv::IMWRITE_JPEG_QUALITY, quality});
  return {bytes.begin(), bytes.end()};
}

void WritePhotograph(const Shoot& shoot, const PhotographRenderer& renderer, int index,
                     ShootFiles& files) {
  const Photograph& photograph = shoot.photographs[index];
  switch (photograph.flaw) {
    case Flaw::kMissing:
      files.Remove(photograph.path);
      break;
    case Flaw::kNotAnImage:
      files.Write(photograph.path, "This file has the name of a photograph but is not an image.\n");
      break;
    default:
      files.Write(photograph.path, Jpeg(renderer.Render(index), shoot.options.jpegQuality));
  }
}

}  // namespace

void WriteShoot(const Shoot& shoot, const fs::path& folder,
                const std::function<void(int done, int all)>& progress) {
  fs::create_directories(folder / "photos");
  // First, because the program recognises a simulated shoot by these two files, also an incomplete
  // one.
  ShootFiles files(folder);
  files.Write("truth.json", TruthText(shoot));
  files.Write("shoot.toml", ConfigText(shoot));
  files.Write("tracker_data.csv", TrackerDataText(shoot));

  const PhotographRenderer renderer(shoot);
  const int all = static_cast<int>(shoot.photographs.size());
  for (int i = 0; i < all; ++i) {
    WritePhotograph(shoot, renderer, i, files);
    if (progress) {
      progress(i + 1, all);
    }
  }
  files.Finish();
}

std::vector<std::string> ChangedFiles(const fs::path& folder) {
  const std::set<std::string> lines = ReadList(folder);
  std::vector<std::string> names = {"shoot.toml", "tracker_data.csv", "truth.json"};
  if (fs::is_directory(folder / "photos")) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder / "photos")) {
      names.push_back("photos/" + entry.path().filename().u8string());
    }
  }
  std::sort(names.begin(), names.end());
  std::vector<std::string> changed;
  for (const std::string& name : names) {
    const fs::path path = folder / fs::u8path(name);
    std::ifstream file(path, std::ios::binary);
    if (fs::is_regular_file(path) && path.filename() != kPartName &&
        lines.count(LineOf(HashOf(file), name)) == 0) {
      changed.push_back(name);
    }
  }
  return changed;
}

std::string TrackerDataText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const std::string lineEnd = options.windowsLineEnds ? "\r\n" : "\n";
  std::string text = (options.byteOrderMark ? kByteOrderMark : "") + (kHeader + lineEnd);
  double seconds = 0;
  for (const Photograph& photograph : shoot.photographs) {
    text += ToFixedText(seconds, 3) + ',' + photograph.path +
            PoseText(photograph.trackedTc, options.invertedQuaternions) +
            PoseText(photograph.trackedTr, options.invertedQuaternions) + lineEnd;
    seconds += kSecondsBetweenPhotographs;
  }
  return text;
}

std::string ConfigText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const Chart& chart = options.chart;
  const Mounting& mounting = shoot.nominalMounting;
  const std::string sensor =
      ToShortestText(options.sensorWidthMm) + 'x' + ToShortestText(options.sensorHeightMm);
  const std::string board = ToShortestText(chart.cols) + 'x' + ToShortestText(chart.rows);
  return "# A simulated shoot. Run it with: trackedcam calibrate --config shoot.toml\n"
         "[calibrate]\n" +
         Line("data", Quoted("tracker_data.csv")) + Line("sensor", Quoted(sensor)) +
         Line("board", Quoted(board)) + Line("square", ToShortestText(chart.squareMetres)) +
         Line("chart-rotation", Quoted(Triple(mounting.anglesDegrees))) +
         Line("chart-translation", Quoted(Triple(mounting.translationMetres))) +
         Line("invert-tracker-quaternions", options.invertedQuaternions ? "true" : "false") +
         Line("log-folder", Quoted("log")) + Line("result", Quoted("result.json")) +
         Line("truth", Quoted("truth.json"));
}

std::string TruthText(const Shoot& shoot) {
  const ShootOptions& options = shoot.options;
  const Lens& lens = shoot.lens;
  const double width = options.imageWidth;
  const double height = options.imageHeight;
  Json truth = {
      {"seed", options.seed},
      {"imageSize", {options.imageWidth, options.imageHeight}},
      {"lensPixels", {{"fx", lens.fx}, {"fy", lens.fy}, {"cx", lens.cx}, {"cy", lens.cy}}},
      {"normFocal", {lens.fx / width, lens.fy / height}},
      {"normCenter", {lens.cx / width, lens.cy / height}},
      {"distortion", {lens.k1, lens.k2, lens.p1, lens.p2, lens.k3}},
      {"fieldOfView", {FieldOfViewDegrees(width, lens.fx), FieldOfViewDegrees(height, lens.fy)}},
      {"transformCamTc", Numbers(shoot.Transform_Cam_Tc)},
      {"mounting",
       {{"true", MountingJson(shoot.trueMounting)},
        {"nominal", MountingJson(shoot.nominalMounting)}}},
      {"flaws", FlawsJson(options)},
      {"outliers", Json::array()},
      {"frozen", Json::array()},
      {"unusable", Json::array()},
      {"photographs", Json::array()},
  };
  ListPhotographs(shoot, truth);
  return truth.dump(2) + '\n';
}

}  // namespace trackedcam::simulator
