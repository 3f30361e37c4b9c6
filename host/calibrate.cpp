#include "host/calibrate.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <stdexcept>

#include "host/findings/cross_check_findings.h"
#include "host/findings/row_words.h"
#include "host/findings/run_findings.h"
#include "host/input/inputs.h"
#include "host/input/photograph_checks.h"
#include "host/run/library_run.h"
#include "host/run/run_folder.h"
#include "host/verdict/observed.h"

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
    report.findings.push_back({"notCrossChecked",
                               Severity::kWarning,
                               std::string("The cross-check stopped: ") + error.what() + '.',
                               "Keep the log and report it.",
                               {},
                               {},
                               ""});
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
  const std::vector<Finding> losses = LossesOf(report.run);
  if (!report.crossCheck) {
    Append(report.findings, losses);  // without a cross-check the result is doubtful
  }
  SortFindings(report.findings);
  report.verdict = VerdictOf(report.run, report.findings);
  if (report.crossCheck) {
    Append(report.findings, losses);
    SortFindings(report.findings);
  }
}

Report RunAndJudge(const Inputs& inputs, const std::vector<DataRow>& rows, PhotographList list,
                   const std::vector<Finding>& ofInput, const ProgressListener& listener) {
  const std::vector<std::size_t> given = ToRun(list);
  std::vector<DataRow> givenRows;
  for (const std::size_t index : given) {
    givenRows.push_back(rows[index]);
  }
  Report report;
  report.inputs = inputs;
  report.run = RunLibrary(inputs, givenRows, inputs.mounting.value_or(Mounting{}),
                          CreateRunFolder(inputs.logFolder), listener);
  report.photographs = std::move(list);
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
  PhotographList list = ListPhotographs(shoot.rows, inputs.workingFolder);
  const PhotographChecks checks = CheckPhotographs(shoot.rows, inputs);
  Append(findings, checks.findings);
  for (const std::size_t index : checks.leaveOut) {
    list[index].state = PhotographState::kLeftOutBeforeTheRun;
  }
  if (ToRun(list).empty() && !findings.empty()) {
    throw InputError(findings.front().text + ' ' + findings.front().advice);
  }
  return list;
}

bool HasFinding(const Report& report, const std::string& id) {
  return std::any_of(report.findings.begin(), report.findings.end(),
                     [&](const Finding& finding) { return finding.id == id; });
}

bool HasBetterAnswer(const Report& report) {
  if (!report.crossCheck || !report.crossCheck->mounting) {
    return false;
  }
  const bool isOff = HasFinding(report, "mountingOff") || HasFinding(report, "badPhotographs") ||
                     HasFinding(report, "libraryApart");
  return !report.inputs.mounting || (report.inputs.refineMounting && isOff);
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

// Without a mounting a run ends with a result or one of these.
bool DependsOnMounting(const LibraryRun& run) {
  const std::set<int> codes = {kSuccess, kNewShootRecommended, 6, 13, 14};
  return run.code && codes.count(*run.code) > 0;
}

// Without a mounting there is no result, whatever the code.
void JudgeAsFailed(Report& report) {
  const std::string wordsOfRun = report.verdict.words;
  report.verdict.level = Level::kFailed;
  report.verdict.words =
      "The mounting of the chart's tracker was not stated, and cannot be found from this shoot.";
  report.verdict.nextStep = NextStep::kNone;
  const auto error = [](const Finding& finding) { return finding.severity != Severity::kNote; };
  const auto worst = std::find_if(report.findings.begin(), report.findings.end(), error);
  if (worst != report.findings.end()) {
    report.verdict.words += ' ' + worst->text;
    report.verdict.advice = worst->advice;
  } else if (DependsOnMounting(report.run)) {
    report.verdict.advice = "State the mounting, or shoot more photographs.";
  } else {
    report.verdict.words += ' ' + wordsOfRun;  // such as too few photographs
  }
}

void AddNotRefined(Report& first, const std::string& reason) {
  if (!first.mountingIsStated) {
    JudgeAsFailed(first);
  }
  Finding finding;
  finding.id = "notRefined";
  finding.severity = Severity::kWarning;
  finding.text = "The second run, with the mounting found, could not begin: " + reason + '.';
  finding.advice = "Check the log folder and the disk, and calibrate again.";
  first.findings.push_back(finding);
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
