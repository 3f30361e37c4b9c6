#include "host/calibrate.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <stdexcept>
#include <utility>

#include "crosscheck/not_still.h"
#include "host/findings/finding_text.h"
#include "host/input/excluded.h"
#include "host/input/inputs.h"
#include "host/input/photograph_checks.h"
#include "host/lost_photographs.h"
#include "host/motion_blur.h"
#include "host/run/library_run.h"
#include "host/run/run_folder.h"
#include "host/second_run.h"
#include "host/verdict/cross_check_adapter.h"
#include "host/verdict/exclusion.h"
#include "host/verdict/run_findings.h"

namespace trackedcam::host {
namespace {

void Append(std::vector<Finding>& findings, const std::vector<Finding>& more) {
  findings.insert(findings.end(), more.begin(), more.end());
}

// Those of kinds that are not among the findings yet.
void AddOthers(std::vector<Finding>& findings, const std::vector<Finding>& more) {
  for (const Finding& other : more) {
    if (std::none_of(findings.begin(), findings.end(), [&](const Finding& finding) {
          return finding.kind.index() == other.kind.index();
        })) {
      findings.push_back(other);
    }
  }
}

// Adds the time from its construction to its destruction.
class Stopwatch {
 public:
  explicit Stopwatch(std::optional<double>& seconds) : seconds_(seconds) {}
  ~Stopwatch() {
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin_;
    seconds_ = seconds_.value_or(0) + passed.count();
  }
  Stopwatch(const Stopwatch&) = delete;
  Stopwatch& operator=(const Stopwatch&) = delete;

 private:
  std::optional<double>& seconds_;
  const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

void CrossCheckRun(Report& report, bool hasResult) {
  auto observations = ObservationsOf(report.run, report.inputs);
  const auto addReason = [&](const std::string& reason) {
    if (IsUsable(report.run)) {
      report.findings.push_back({Severity::kWarning, NotCrossChecked{reason}, {}});
    }
  };
  if (!observations) {
    if (HasCompleteRecord(report.run)) {  // otherwise the incomplete log is the finding
      addReason("The log does not hold the board and the lens.");
    }
    return;
  }
  if (!hasResult) {
    observations->library = std::nullopt;
  }
  try {
    const Stopwatch stopwatch(report.seconds.crossCheck);
    if (!crosscheck::AreRowsOfAFilm(*observations)) {
      MeasureMotionBlur(report, *observations);
    }
    report.crossCheck = crosscheck::Check(*observations);
  } catch (const std::invalid_argument& error) {
    addReason(error.what());  // such as a lens of nan in a log
    return;
  } catch (const std::exception& error) {
    addReason(std::string(error.what()) + '.');
    return;
  }
  if (hasResult && report.crossCheck->solved && !report.crossCheck->library) {
    addReason("The log does not hold the transform.");
  }
  EnterCrossCheck(*report.crossCheck, report.photographs);
  Append(report.findings, FindingsOf(*report.crossCheck, CheckedNames(report.photographs)));
}

// Rows in another unit or axes put the trackers far apart.
void RemoveWhatReadingExplains(std::vector<Finding>& findings) {
  const auto isReading = [](const Finding& finding) {
    return std::holds_alternative<crosscheck::MisreadRows>(finding.kind);
  };
  if (std::any_of(findings.begin(), findings.end(), isReading)) {
    findings.erase(std::remove_if(findings.begin(), findings.end(),
                                  [](const Finding& finding) {
                                    return std::holds_alternative<LengthUnit>(finding.kind);
                                  }),
                   findings.end());
  }
}

// Whether the option of the verdict is not in use yet, and a second run with it can be.
bool IsOptionOpen(const Report& report, bool isSecondRun) {
  const auto begins = [&](const char* name) { return report.verdict.option.rfind(name, 0) == 0; };
  const TrackerFrame& frame = report.inputs.trackerFrame;
  const bool hasReportedAxes = &AxesOf(frame) == &kTrackerAxes.front();
  return begins("--refine-mounting")              ? !isSecondRun && CanRunAgain(report)
         : begins("--invert-tracker-quaternions") ? !report.inputs.invertTrackerQuaternions
         : begins("--quaternion-order")           ? !frame.hasQuaternionsXyzw
         : begins("--tracker-units") ? hasReportedAxes && UnitOf(frame).unitsPerMetre == 1
                                     : hasReportedAxes;
}

// A run without a stated mounting was given zeros: it has no result to compare.
void Judge(Report& report, const std::vector<Finding>& ofInput, bool hasResult,
           const Report* first = nullptr) {
  report.findings = ofInput;
  Append(report.findings, ExplainLostPhotographs(report));  // may be why the rest is found
  CrossCheckRun(report, hasResult);
  RemoveWhatReadingExplains(report.findings);
  Append(report.findings, FindingsOf(report.run, report.crossCheck));
  if (first != nullptr) {
    AddOthers(report.findings, FindingsThatStay(*first));
  } else if (const auto tooFew = TooFewForSecondRun(report)) {
    report.findings.push_back({Severity::kWarning, *tooFew, {}});
  }
  const std::vector<Finding> outputErrors = OutputErrorsOf(report.run);
  if (!report.crossCheck) {
    Append(report.findings, outputErrors);  // without a cross-check the result is doubtful
  }
  SortFindings(report.findings);
  report.verdict = VerdictOf(report.run, report.photographs, report.findings);
  if (!IsOptionOpen(report, first != nullptr)) {
    report.verdict.option.clear();
  }
  report.verdict.exclude = PhotographsToExclude(report.photographs, report.findings);
  if (report.crossCheck) {
    Append(report.findings, outputErrors);
    SortFindings(report.findings);
  }
}

Report RunAndJudge(const Inputs& inputs, const std::vector<DataRow>& rows, PhotographList list,
                   const std::vector<Finding>& ofInput, const ProgressListener& listener,
                   const Report* first = nullptr) {
  Report report;
  report.seconds = first == nullptr ? PartSeconds() : first->seconds;
  report.sharpness =
      first == nullptr ? std::make_shared<SharpnessList>(rows.size()) : first->sharpness;
  report.inputs = inputs;
  report.photographs = std::move(list);
  const std::vector<std::size_t> given = ToRun(report.photographs);
  std::vector<DataRow> givenRows;
  givenRows.reserve(given.size());
  for (const std::size_t entry : given) {
    givenRows.push_back(rows[report.photographs[entry].index]);
  }
  const std::filesystem::path folder = CreateRunFolder(inputs.logFolder);
  {
    const Stopwatch stopwatch(report.seconds.library);
    report.run =
        RunLibrary(inputs, givenRows, inputs.mounting.value_or(Mounting{}), folder, listener);
  }
  EnterRun(report.run, given, report.photographs);
  Judge(report, ofInput, inputs.mounting.has_value(), first);
  return report;
}

// Without its 128 MB, the linear algebra below the library never returns.
void RequireMemory() {
  constexpr std::size_t kBytes = std::size_t{512} << 20;
  const std::unique_ptr<char, void (*)(void*)> block(static_cast<char*>(std::malloc(kBytes)),
                                                     std::free);
  if (block == nullptr) {
    throw std::runtime_error("there is too little memory: a calibration begins with 512 MB");
  }
  *static_cast<volatile char*>(block.get()) = 0;  // otherwise a compiler may remove the allocation
}

// Rows and photographs that the library must not be given are left out.
PhotographList CheckedList(const Inputs& inputs, const ShootData& shoot,
                           std::vector<Finding>& findings) {
  const PhotographChecks checks = CheckPhotographs(shoot.rows, inputs, shoot.excluded);
  Append(findings, checks.findings);
  PhotographList list = ListPhotographs(shoot.rows, checks.unlisted);
  for (PhotographEntry& entry : list) {
    const bool hasPoses =
        !std::binary_search(shoot.leaveOut.begin(), shoot.leaveOut.end(), entry.index);
    if (!hasPoses ||
        std::binary_search(checks.leaveOut.begin(), checks.leaveOut.end(), entry.index)) {
      entry.state = PhotographState::kLeftOutBeforeTheRun;
      entry.reason = hasPoses ? "" : "no pose of a tracker in its row";
    }
  }
  LeaveOut(shoot.excluded, list);
  if (ToRun(list).empty() && !findings.empty()) {
    SortFindings(findings);
    throw InputError(Text(findings.front()) + ' ' + Advice(findings.front()));
  }
  if (ToRun(list).empty() && !shoot.excluded.empty()) {
    throw InputError("every photograph is left out: name fewer of them");
  }
  return list;
}

std::vector<std::string> NamesIn(const RunRecord& record) {
  std::vector<std::string> names;
  for (const Photograph& photograph : record.photographs) {
    names.push_back(photograph.path);
  }
  return names;
}

void JudgeAsFailed(Report& report) {
  report.verdict = VerdictWithoutMounting(report.run, report.findings);
}

// What the first run found is kept if the second one has no result.
Report WithoutSecondRun(Report first, const NotRefined& notRefined) {
  if (!first.mountingIsStated) {
    JudgeAsFailed(first);
  }
  first.verdict.option.clear();
  first.findings.push_back({Severity::kWarning, notRefined, {}});
  SortFindings(first.findings);
  return first;
}

}  // namespace

Report Calibrate(const Inputs& inputs, const ShootData& shoot, const ProgressListener& listener) {
  RequirePossible(inputs);
  RequireMemory();
  std::vector<Finding> ofInput = shoot.findings;
  const PhotographList list = CheckedList(inputs, shoot, ofInput);
  Report first = RunAndJudge(inputs, shoot.rows, list, ofInput, listener);
  first.mountingIsStated = inputs.mounting.has_value();
  if (!NeedsSecondRun(first)) {
    if (!first.mountingIsStated) {
      JudgeAsFailed(first);
    }
    return first;
  }
  try {
    Report second = RunAndJudge(InputsOfSecondRun(first), shoot.rows,
                                PhotographsOfSecondRun(first, list), ofInput, listener, &first);
    if (!IsUsable(second.run)) {
      first.seconds = second.seconds;
      return WithoutSecondRun(std::move(first), {second.verdict.summary, second.verdict.advice});
    }
    second.mountingIsStated = first.mountingIsStated;
    second.firstRun = std::make_shared<const Report>(std::move(first));
    return second;
  } catch (const std::exception& error) {
    // Such as a deleted log folder.
    return WithoutSecondRun(std::move(first),
                            {std::string(error.what()) + '.',
                             "Check the log folder and the disk, and calibrate again."});
  }
}

Report CheckLog(const std::filesystem::path& log, const std::optional<Mounting>& mounting,
                const Accuracy& goodEnough, double scaleUncertainty,
                const std::vector<std::string>& exclude, const std::vector<double>& atMetres) {
  RequirePossible(goodEnough, scaleUncertainty, atMetres);
  std::error_code error;
  if (!std::filesystem::is_regular_file(log, error)) {  // a device has no end
    throw InputError("there is no file " + log.u8string());
  }
  std::ifstream file(log, std::ios::binary);
  Report report;
  report.inputs.mounting = mounting;
  report.inputs.goodEnough = goodEnough;
  report.inputs.scaleUncertainty = scaleUncertainty;
  report.inputs.exclude = exclude;
  report.inputs.atMetres = atMetres;
  report.mountingIsStated = mounting.has_value();
  LibraryRun& run = report.run;
  run.record = ReadRunLog(file);
  if (run.record.libraryVersion.empty() || !run.record.board) {
    throw InputError(log.u8string() + " is not the log of a calibration");
  }
  run.folder = log.parent_path();
  run.log = log;
  if (run.record.isSuccessful) {
    run.code = kSuccess;
  } else if (run.record.errorCode) {
    run.code = run.record.errorCode;
  } else {
    run.exception = "the log ends before the run does";
  }
  run.outputs = OutputsOf(run.record);
  report.photographs = ListPhotographs(run.record);
  const std::vector<std::size_t> excluded = FindExcluded(NamesIn(run.record), exclude);
  for (const std::size_t index : excluded) {
    run.record.photographs[index].raw.reset();  // so that the cross-check does not see it
  }
  EnterRun(run, ToRun(report.photographs), report.photographs);
  LeaveOut(excluded, report.photographs);
  Judge(report, {}, true);
  return report;
}

}  // namespace trackedcam::host
