#include "host/calibrate.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <stdexcept>

#include "host/findings/finding_text.h"
#include "host/input/inputs.h"
#include "host/input/photograph_checks.h"
#include "host/run/library_run.h"
#include "host/run/run_folder.h"
#include "host/verdict/cross_check_adapter.h"
#include "host/verdict/run_findings.h"

namespace trackedcam::host {
namespace {

void Append(std::vector<Finding>& findings, const std::vector<Finding>& more) {
  findings.insert(findings.end(), more.begin(), more.end());
}

void CrossCheckRun(Report& report, bool hasResult) {
  auto observations = ObservationsOf(report.run.record, report.inputs.mounting);
  if (!observations) {
    return;
  }
  if (!hasResult) {
    observations->library = std::nullopt;
  }
  try {
    report.crossCheck = crosscheck::Check(*observations);
  } catch (const std::invalid_argument&) {
    return;  // a log whose values contradict each other: there is nothing to check
  } catch (const std::exception& error) {
    // The library's result is valid without a second opinion.
    report.findings.push_back({Severity::kWarning, NotCrossChecked{error.what()}, {}});
    return;
  }
  EnterCrossCheck(*report.crossCheck, report.photographs);
  Append(report.findings, FindingsOf(*report.crossCheck, CheckedNames(report.photographs)));
}

// A run without a stated mounting was given zeros: it has no result to compare.
void Judge(Report& report, const std::vector<Finding>& ofInput, bool hasResult) {
  report.findings = ofInput;
  CrossCheckRun(report, hasResult);
  Append(report.findings, FindingsOf(report.run));
  const std::vector<Finding> outputErrors = OutputErrorsOf(report.run);
  if (!report.crossCheck) {
    Append(report.findings, outputErrors);  // without a cross-check the result is doubtful
  }
  SortFindings(report.findings);
  report.verdict = VerdictOf(report.run, report.photographs.size(), report.findings);
  if (report.crossCheck) {
    Append(report.findings, outputErrors);
    SortFindings(report.findings);
  }
}

Report RunAndJudge(const Inputs& inputs, const std::vector<DataRow>& rows, PhotographList list,
                   const std::vector<Finding>& ofInput, const ProgressListener& listener) {
  Report report;
  report.inputs = inputs;
  report.photographs = std::move(list);
  const std::vector<std::size_t> given = ToRun(report.photographs);
  std::vector<DataRow> givenRows;
  givenRows.reserve(given.size());
  for (const std::size_t entry : given) {
    givenRows.push_back(rows[report.photographs[entry].index]);
  }
  report.run = RunLibrary(inputs, givenRows, inputs.mounting.value_or(Mounting{}),
                          CreateRunFolder(inputs.logFolder), listener);
  EnterRun(report.run, given, report.photographs);
  Judge(report, ofInput, inputs.mounting.has_value());
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

// Photographs that the library must not be given are left out.
PhotographList CheckedList(const Inputs& inputs, const ShootData& shoot,
                           std::vector<Finding>& findings) {
  const PhotographChecks checks = CheckPhotographs(shoot.rows, inputs);
  Append(findings, checks.findings);
  PhotographList list = ListPhotographs(shoot.rows, checks.unlisted);
  for (PhotographEntry& entry : list) {
    if (std::binary_search(checks.leaveOut.begin(), checks.leaveOut.end(), entry.index)) {
      entry.state = PhotographState::kLeftOutBeforeTheRun;
    }
  }
  if (ToRun(list).empty() && !findings.empty()) {
    throw InputError(Text(findings.front()) + ' ' + Advice(findings.front()));
  }
  return list;
}

bool HasBetterAnswer(const Report& report) {
  if (!report.crossCheck || !report.crossCheck->mounting) {
    return false;
  }
  return !report.inputs.mounting ||
         (report.inputs.refineMounting &&
          std::any_of(report.findings.begin(), report.findings.end(), CanRefine));
}

// For a second run: what contradicts the others in the first one is left out, and says why.
PhotographList ListWithoutBad(const Report& first, PhotographList list) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    const PhotographEntry& entry = first.photographs[i];
    if (entry.checked && !first.crossCheck->perPhotograph.at(*entry.checked).used) {
      list[i].state = PhotographState::kLeftOutByCrossCheck;
      list[i].reason = entry.reason;
    }
  }
  return list;
}

void JudgeAsFailed(Report& report) {
  report.verdict = VerdictWithoutMounting(report.run, report.findings);
}

void AddNotRefined(Report& first, const std::string& reason) {
  if (!first.mountingIsStated) {
    JudgeAsFailed(first);
  }
  first.findings.push_back({Severity::kWarning, NotRefined{reason}, {}});
  SortFindings(first.findings);
}

}  // namespace

Report Calibrate(const Inputs& inputs, const ShootData& shoot, const ProgressListener& listener) {
  RequirePossible(inputs);
  RequireMemory();
  std::vector<Finding> ofInput = shoot.findings;
  const PhotographList list = CheckedList(inputs, shoot, ofInput);
  Report first = RunAndJudge(inputs, shoot.rows, list, ofInput, listener);
  first.mountingIsStated = inputs.mounting.has_value();
  if (!HasBetterAnswer(first)) {
    if (!first.mountingIsStated) {
      JudgeAsFailed(first);
    }
    return first;
  }
  Inputs again = inputs;
  again.mounting = first.crossCheck->mounting;
  again.expectedRecords = std::nullopt;
  try {
    Report second = RunAndJudge(again, shoot.rows, ListWithoutBad(first, list), ofInput, listener);
    second.mountingIsStated = first.mountingIsStated;
    second.firstRun = std::make_shared<const Report>(std::move(first));
    return second;
  } catch (const std::exception& error) {
    // Such as a deleted log folder: what the first run found is kept.
    AddNotRefined(first, error.what());
    return first;
  }
}

Report CheckLog(const std::filesystem::path& log, const std::optional<Mounting>& mounting) {
  std::ifstream file(log, std::ios::binary);
  Report report;
  report.inputs.mounting = mounting;
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
  EnterRun(run, ToRun(report.photographs), report.photographs);
  Judge(report, {}, true);
  return report;
}

}  // namespace trackedcam::host
