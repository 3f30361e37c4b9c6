#include "host/findings/cross_check_findings.h"

namespace trackedcam::host {
namespace {

using Names = std::vector<std::string>;

// Most kinds name no photograph and stay as they are.
struct ToHost {
  const crosscheck::CrossCheck& crossCheck;
  const Names& photographs;
  Finding& finding;

  template <class Kind>
  void operator()(const Kind& kind) const {
    finding.kind = kind;
  }

  void operator()(const crosscheck::TrackerMoved& moved) const {
    finding.kind = moved;
    finding.photographs = {photographs.at(moved.before)};
  }

  void operator()(const crosscheck::BadPhotographs& bad) const {
    BadPhotographs kind = {bad.share, {}};
    for (const std::size_t index : bad.photographs) {
      const crosscheck::PerPhotograph& photograph = crossCheck.perPhotograph.at(index);
      kind.disagreements.push_back(
          {photograph.mm, photograph.degrees, photograph.whyLeftOut,
           photograph.fitsTrackersOf ? photographs.at(*photograph.fitsTrackersOf) : ""});
      finding.photographs.push_back(photographs.at(index));
    }
    finding.kind = std::move(kind);
  }
};

}  // namespace

std::vector<Finding> FindingsOf(const crosscheck::CrossCheck& crossCheck,
                                const Names& photographs) {
  std::vector<Finding> findings;
  for (const crosscheck::Finding& found : crossCheck.findings) {
    Finding finding;
    finding.severity = found.severity;
    std::visit(ToHost{crossCheck, photographs, finding}, found.kind);
    findings.push_back(std::move(finding));
  }
  return findings;
}

}  // namespace trackedcam::host
