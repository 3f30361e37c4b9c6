#include "simulator/write_recording.h"

#include <nlohmann/json.hpp>

#include "simulator/decimals.h"
#include "simulator/rendering.h"
#include "simulator/simulated_files.h"
#include "simulator/tracking.h"
#include "simulator/write_shoot.h"

namespace trackedcam::simulator {
namespace {

constexpr int kDecimalsOfTime = 9;
constexpr int kDecimalsOfPose = 12;

// The shoot whose photographs are the frames.
Shoot ShootOfFrames(const Recording& recording) {
  Shoot shoot;
  shoot.options = recording.options.shoot;
  shoot.options.delayMs = recording.options.delayMs;
  shoot.lens = recording.lens;
  shoot.Transform_Cam_Tc = recording.Transform_Cam_Tc;
  shoot.trueMounting = recording.trueMounting;
  shoot.nominalMounting = recording.nominalMounting;
  const Path path = PathOf(recording.options);
  for (const RecordedFrame& frame : recording.frames) {
    const Moment moment = path.At(frame.time);
    Photograph photograph;
    photograph.path = FramePath(static_cast<int>(shoot.photographs.size()));
    photograph.Transform_Cam_Chart = moment.Transform_Cam_Chart;
    photograph.Transform_Base_Tc = moment.Transform_Base_Tc;
    photograph.Transform_Base_Tr = moment.Transform_Base_Tr;
    shoot.photographs.push_back(photograph);
  }
  return shoot;
}

}  // namespace

void WriteRecording(const Recording& recording, const std::filesystem::path& folder,
                    const std::function<void(int done, int all)>& progress) {
  std::filesystem::create_directories(folder / "frames");
  SimulatedFiles files(folder);
  // First, because the program recognises a recording by these two files, also an incomplete one.
  files.Write("truth.json", TruthText(recording));
  files.Write("camera_poses.txt", PosesText(recording.camera, recording.options));
  files.Write("chart_poses.txt", PosesText(recording.chart, recording.options));
  files.Write("frames/times.csv", TimesText(recording));

  const FrameRenderer renderer(recording);
  const int all = static_cast<int>(recording.frames.size());
  for (int i = 0; i < all; ++i) {
    files.Write(FramePath(i), Jpeg(renderer.Render(i), recording.options.shoot.jpegQuality));
    if (progress) {
      progress(i + 1, all);
    }
  }
  files.RemoveEarlier("frames");  // of a longer film
  files.Finish();
}

std::string FramePath(int index) {
  constexpr std::size_t kDigits = 6;
  const std::string number = std::to_string(index + 1);
  const std::string zeros(number.size() < kDigits ? kDigits - number.size() : 0, '0');
  return "frames/" + zeros + number + ".jpg";
}

std::string TimesText(const Recording& recording) {
  std::string text = "frame,time\n";
  int number = 0;
  for (const RecordedFrame& frame : recording.frames) {
    text += std::to_string(++number) + ',' + ToFixedText(frame.time, kDecimalsOfTime) + '\n';
  }
  return text;
}

std::string PosesText(const std::vector<RecordedPose>& poses, const RecordingOptions& options) {
  std::string text = "# A simulated recording: t x y z qx qy qz qw\n";
  for (const RecordedPose& recorded : poses) {
    const Eigen::Isometry3d pose = InReportedAxes(recorded.pose);
    Eigen::Quaterniond rotation(pose.linear());
    if (options.shoot.invertedQuaternions) {
      rotation = rotation.conjugate();
    }
    const Eigen::Vector3d& position = pose.translation();
    text += ToFixedText(recorded.stamp, kDecimalsOfTime);
    for (const double number : {position.x(), position.y(), position.z(), rotation.x(),
                                rotation.y(), rotation.z(), rotation.w()}) {
      text += ' ' + ToFixedText(number, kDecimalsOfPose);
    }
    text += '\n';
  }
  return text;
}

std::string TruthText(const Recording& recording) {
  auto truth = nlohmann::ordered_json::parse(TruthText(ShootOfFrames(recording)));
  const RecordingOptions& options = recording.options;
  truth["delayMs"] = options.delayMs;
  truth["driftPpm"] = options.driftPpm;
  truth["firstStamp"] = options.firstStamp;
  truth["motion"] = options.motion == Motion::kTripod ? "tripod" : "handheld";
  truth["exposureMs"] = options.exposureSeconds * 1e3;
  truth["readoutMs"] = options.readoutSeconds * 1e3;
  return truth.dump(2) + '\n';
}

}  // namespace trackedcam::simulator
