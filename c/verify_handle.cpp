// Verifications and comparisons: their values as JSON.

#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "c/handles.h"
#include "c/shoot_handle.h"
#include "c/status.h"
#include "host/compare.h"
#include "host/text/files.h"
#include "host/verify/verify.h"
#include "host/verify/verify_json.h"

namespace trackedcam::c {
namespace {

namespace fs = std::filesystem;
using crosscheck::Answer;

static_assert(TRACKEDCAM_HOLDS == static_cast<int>(Answer::kHolds) &&
              TRACKEDCAM_CAMERA_TRACKER_MOVED == static_cast<int>(Answer::kCameraTrackerMoved) &&
              TRACKEDCAM_CHART_TRACKER_MOVED == static_cast<int>(Answer::kChartTrackerMoved) &&
              TRACKEDCAM_BOTH_TRACKERS_MOVED == static_cast<int>(Answer::kBothTrackersMoved) &&
              TRACKEDCAM_LENS_CHANGED == static_cast<int>(Answer::kLensChanged) &&
              TRACKEDCAM_LENS_AND_TRACKER == static_cast<int>(Answer::kLensAndTracker) &&
              TRACKEDCAM_UNCLEAR == static_cast<int>(Answer::kUnclear) &&
              TRACKEDCAM_UNRELATED == static_cast<int>(Answer::kUnrelated) &&
              TRACKEDCAM_TOO_FEW == static_cast<int>(Answer::kTooFew));

struct Verification {
  Answer answer;
  std::string json;
};

Handles<trackedcam_verification, Verification>& Verifications() {
  static auto* const all = new Handles<trackedcam_verification, Verification>("verification");
  return *all;
}

struct Comparison {
  std::string json;
};

Handles<trackedcam_comparison, Comparison>& Comparisons() {
  static auto* const all = new Handles<trackedcam_comparison, Comparison>("comparison");
  return *all;
}

fs::path AbsolutePathOf(const std::string& text, const char* name) {
  if (text.empty()) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is empty.");
  }
  return fs::absolute(fs::u8path(text));
}

void Apply(const trackedcam_verify_options& options, host::VerifyInputs& inputs) {
  RequireSize(options.struct_size, sizeof(trackedcam_verify_options), "options");
  inputs.chartRemounted = options.chart_remounted != 0;
  if (options.board_columns != 0 || options.board_rows != 0) {
    inputs.board = std::array<int, 2>{options.board_columns, options.board_rows};
  }
  if (options.square_m != 0) {
    inputs.squareMetres = options.square_m;
  }
  inputs.atMetres = AtMetresOf(options.at_m, options.at_count);
  const std::string folder = OptionalText(options.working_folder, "working_folder");
  if (!folder.empty()) {
    inputs.workingFolder = AbsolutePathOf(folder, "working_folder");
  }
}

}  // namespace
}  // namespace trackedcam::c

using namespace trackedcam::c;

trackedcam_status trackedcam_verify_options_init(trackedcam_verify_options* options,
                                                 size_t struct_size) {
  return Guarded([&] {
    RequirePointer(options, "options");
    RequireSize(struct_size, sizeof(trackedcam_verify_options), "options");
    *options = {};
    options->struct_size = sizeof(trackedcam_verify_options);
  });
}

trackedcam_status trackedcam_verify(const char* result_file, const char* data_file,
                                    const trackedcam_verify_options* options,
                                    trackedcam_verification** verification) {
  return Guarded([&] {
    trackedcam::host::VerifyInputs inputs;
    inputs.result = AbsolutePathOf(RequireText(result_file, "result_file"), "result_file");
    inputs.data = AbsolutePathOf(RequireText(data_file, "data_file"), "data_file");
    inputs.workingFolder = inputs.data.parent_path();
    RequirePointer(verification, "verification");
    if (options != nullptr) {
      Apply(*options, inputs);
    }
    const trackedcam::host::VerifyReport report = trackedcam::host::Verify(inputs);
    *verification = Verifications().Add(std::make_shared<Verification>(
        Verification{report.verification.answer,
                     trackedcam::host::JsonText(trackedcam::host::VerifyJson(report))}));
  });
}

trackedcam_status trackedcam_verification_answer(trackedcam_verification* verification,
                                                 int32_t* answer) {
  return Guarded([&] {
    const auto asked = Verifications().Get(verification);
    RequirePointer(answer, "answer");
    *answer = static_cast<std::int32_t>(asked->answer);
  });
}

trackedcam_status trackedcam_verification_json(trackedcam_verification* verification,
                                               const char** json) {
  return Guarded([&] {
    const auto asked = Verifications().Get(verification);
    RequirePointer(json, "json");
    *json = asked->json.c_str();
  });
}

trackedcam_status trackedcam_verification_free(trackedcam_verification* verification) {
  return Guarded([&] { Verifications().Free(verification); });
}

trackedcam_status trackedcam_compare(const char* first_file, const char* second_file,
                                     trackedcam_comparison** comparison) {
  return Guarded([&] {
    const auto firstFile = AbsolutePathOf(RequireText(first_file, "first_file"), "first_file");
    const auto secondFile = AbsolutePathOf(RequireText(second_file, "second_file"), "second_file");
    RequirePointer(comparison, "comparison");
    const auto first = trackedcam::host::ReadComparedResult(firstFile);
    const auto second = trackedcam::host::ReadComparedResult(secondFile);
    const auto found = trackedcam::host::Compare(first, second);
    *comparison = Comparisons().Add(std::make_shared<Comparison>(Comparison{
        trackedcam::host::JsonText(trackedcam::host::ComparisonJson(first, second, found))}));
  });
}

trackedcam_status trackedcam_comparison_json(trackedcam_comparison* comparison, const char** json) {
  return Guarded([&] {
    const auto asked = Comparisons().Get(comparison);
    RequirePointer(json, "json");
    *json = asked->json.c_str();
  });
}

trackedcam_status trackedcam_comparison_free(trackedcam_comparison* comparison) {
  return Guarded([&] { Comparisons().Free(comparison); });
}
