// The files of a simulated shoot or recording, and the list of them, simulated.txt, with a hash of
// each: what a user has changed since is not replaced.

#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <opencv2/core.hpp>

namespace trackedcam::simulator {

/// Writes files, and the list of them: each is listed before it exists, so that an incomplete
/// folder is recognised too. Other names of a file that is replaced, by hard links, keep its
/// content.
/// @throws std::runtime_error if something cannot be written.
class SimulatedFiles {
 public:
  explicit SimulatedFiles(const std::filesystem::path& folder);

  void Write(const std::string& name, const std::string& content);

  void Remove(const std::string& name);

  /// Removes those files in a subfolder that were simulated earlier, not replaced and not changed.
  void RemoveEarlier(const std::string& subfolder);

  /// Lists the files, with those simulated earlier that were not replaced.
  void Finish();

 private:
  std::filesystem::path folder_;
  std::set<std::string> earlier_;               // lines
  std::map<std::string, std::string> written_;  // name and line
};

/// The files in the folder of a simulated shoot or recording that have the names of simulated files
/// but not their content, such as own rows in tracker_data.csv. All, if there is no simulated.txt.
std::vector<std::string> ChangedFiles(const std::filesystem::path& folder);

/// The picture as a file.
/// @param quality 1 to 100
std::string Jpeg(const cv::Mat& picture, int quality);

}  // namespace trackedcam::simulator
