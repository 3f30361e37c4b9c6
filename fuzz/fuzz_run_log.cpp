// The log of a run: reading it in pieces gives the same record as reading it at once, and the
// cross-check accepts or refuses any record.

#include <algorithm>
#include <stdexcept>

#include "crosscheck/cross_check.h"
#include "fuzz/fuzz.h"
#include "host/run/run_log_reader.h"
#include "host/verdict/cross_check_adapter.h"

namespace {

using namespace trackedcam::host;

RunRecord ReadInPieces(std::string_view log, std::size_t piece) {
  RunLogReader reader;
  for (; !log.empty(); log.remove_prefix(std::min(piece, log.size()))) {
    reader.Consume(log.substr(0, piece));
  }
  return reader.Record();
}

bool AreSame(const RunRecord& a, const RunRecord& b) {
  return a.libraryVersion == b.libraryVersion && a.errorCode == b.errorCode &&
         a.lastMessage == b.lastMessage && a.photographs.size() == b.photographs.size() &&
         a.transformCamTc.size() == b.transformCamTc.size() && a.isSuccessful == b.isSuccessful;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace trackedcam;
  const std::string_view log = fuzz::TextOf(data, size);
  const RunRecord whole = ReadInPieces(log, log.size());
  fuzz::Require(AreSame(whole, ReadInPieces(log, 7)), "a log read in pieces");
  OutputsOf(whole);
  UsedPhotographs(whole);
  constexpr std::size_t kMost = 16;  // more take longer and find nothing more
  LibraryRun run;
  run.record = whole;
  Inputs inputs;
  inputs.mounting = Mounting{};
  const auto observations = ObservationsOf(run, inputs);
  if (observations && observations->photographs.size() <= kMost) {
    try {
      crosscheck::Check(*observations);
    } catch (const std::invalid_argument&) {
    }
  }
  return 0;
}
