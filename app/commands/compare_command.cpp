#include "app/commands/compare_command.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "app/options/option_values.h"
#include "app/terminal/output.h"
#include "host/compare.h"
#include "host/findings/finding_text.h"
#include "host/text/files.h"
#include "host/text/text.h"

namespace trackedcam::app {
namespace {

constexpr const char* kCompareFooter = R"(Example:
  trackedcam compare monday.json tuesday.json

The two cross-checks say whether the difference is chance. Results that share
photographs share errors, so only what is certain is said of them.

Exit status:
  0  the same, or the difference may be chance
  1  it cannot be told, or is probably not chance
  2  wrong usage, or results that cannot be compared
  3  they differ, and not by chance)";

struct CompareOptions {
  std::filesystem::path first;
  std::filesystem::path second;
  bool json = false;
};

std::string Certainty(double p) {
  return "  " + host::CertaintyText(p, false);
}

void PrintComparison(std::ostream& out, const host::ComparedResult& first,
                     const host::ComparedResult& second, const host::Comparison& comparison) {
  using host::Fixed;
  out << "First:  " << first.file << "\n  " << first.verdict << "\nSecond: " << second.file
      << "\n  " << second.verdict << "\n\nTransform_Cam_Tc, second minus first\n";
  const host::Comparison::Transform& transform = comparison.transform;
  PrintRow(out, "", {"x", "y", "z", "all"});
  PrintRow(out, "translation, mm",
           {transform.mm[0], transform.mm[1], transform.mm[2], transform.offMm}, 2);
  PrintRow(out, "rotation, deg",
           {transform.degrees[0], transform.degrees[1], transform.degrees[2], transform.offDegrees},
           3);
  PrintRow(out, "", {Certainty(transform.p)});
  out << "\nLens\n";
  PrintRow(out, "", {"first", "second", "difference"});
  for (const host::Comparison::LensValue& value : comparison.lens) {
    const int decimals = value.name[0] == 'k' ? 5 : 2;
    PrintRow(out, std::string(value.name) + (value.name[0] == 'k' ? "" : ", px"),
             {Fixed(value.first, decimals), Fixed(value.second, decimals),
              Fixed(value.second - value.first, decimals), Certainty(value.p)});
  }
  out << "\nIn the image, px\n";
  PrintRow(out, "", {"rms", "worst", "rms by chance"});
  for (const host::Comparison::OnScreen& at : comparison.onScreen) {
    PrintRow(out, "at " + Fixed(at.distanceMetres, 1) + " m",
             {Fixed(at.rmsPixels, 2), Fixed(at.worstPixels, 2),
              std::isfinite(at.byChance) ? Fixed(at.byChance, 2) : "unknown"});
  }
  out << '\n' << Conclusion(comparison) << '\n';
}

int StatusOf(const host::Comparison& comparison) {
  constexpr int kCannotBeTold = 1;
  constexpr int kDiffer = 3;
  if (comparison.isSame) {
    return 0;
  }
  switch (crosscheck::CertaintyOf(comparison.p)) {
    case crosscheck::Certainty::kMayBeChance:
      return comparison.wrong.empty() ? 0 : kCannotBeTold;
    case crosscheck::Certainty::kIsCertain:
      return kDiffer;
    case crosscheck::Certainty::kIsLikely:
    case crosscheck::Certainty::kIsUnknown:
      break;
  }
  return kCannotBeTold;
}

int CompareFiles(const CompareOptions& options) {
  const host::ComparedResult first = host::ReadComparedResult(options.first);
  const host::ComparedResult second = host::ReadComparedResult(options.second);
  const host::Comparison comparison = host::Compare(first, second);
  if (options.json) {
    std::cout << host::JsonText(host::ComparisonJson(first, second, comparison));
  } else {
    PrintComparison(std::cout, first, second, comparison);
  }
  return StatusOf(comparison);
}

}  // namespace

void AddCompareCommand(CLI::App& program, int& status) {
  CLI::App& command =
      AddCommand(program, "compare", "Compare two results of one camera", kCompareFooter);
  const auto options = std::make_shared<CompareOptions>();
  AddPath(command, "first", options->first, "FILE.json", "Result file of trackedcam calibrate")
      ->required()
      ->check(RequireFile);
  AddPath(command, "second", options->second, "FILE.json", "Another one, of the same camera")
      ->required()
      ->check(RequireFile);
  command.add_flag("--json", options->json, "Values as JSON, at full precision");
  command.callback([options, &status] { status = CompareFiles(*options); });
}

}  // namespace trackedcam::app
