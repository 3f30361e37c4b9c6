// The sentences about data file and photographs' files.

#pragma once

#include "host/findings/finding.h"
#include "host/findings/sentences.h"

namespace trackedcam::host {

struct InputWriter {
  const Names& photographs;  // of the finding

  Sentences operator()(const RowFault& fault) const;
  Sentences operator()(const ValueFault& fault) const;
  Sentences operator()(const QuaternionLength& fault) const;
  Sentences operator()(const FrozenPose& fault) const;
  Sentences operator()(const RepeatedRows& fault) const;
  Sentences operator()(const LengthUnit& fault) const;
  Sentences operator()(const Utf16Text& fault) const;
  Sentences operator()(const PhotographFault& fault) const;
  Sentences operator()(const MissingPhotographs& fault) const;
  Sentences operator()(const HugePhotographs& fault) const;
  Sentences operator()(const PhotographSizes& fault) const;
  Sentences operator()(const OrientationTag& fault) const;
  Sentences operator()(const Aspect& fault) const;
  Sentences operator()(const UnsharpPhotographs& fault) const;
};

}  // namespace trackedcam::host
