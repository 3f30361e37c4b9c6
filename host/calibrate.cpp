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
#include "host/input/data_checks.h"
#include "host/input/inputs.h"
#include "host/input/photograph_checks.h"
#include "host/run/library_run.h"
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
  for (const crosscheck::Photograph& photograph : observations->photographs) {
    report.checkedPhotographs.push_back(photograph.name);
  }
  try {
    report.crossCheck = crosscheck::Check(*observations);
  } catch (const std::invalid_argument&) {
    return;  // a log whose figures contradict each other: there is nothing to check
  } catch (const std::exception& error) {
    // The library's result stands, whatever becomes of a second opinion about it.
    report.findings.push_back({"notCrossChecked",
                               Severity::kWarning,
                               std::string("The cross-check stopped: ") + error.what() + '.',
                               "Keep the log and report it.",
                               {},
                               {},
                               ""});
    return;
  }
  Append(report.findings, FindingsOf(*report.crossCheck, report.checkedPhotographs));
}

// A run that was given zeros for a mounting that nobody stated has no result to compare.
void Judge(Report& report, const std::vector<Finding>& ofInput, bool hasResult) {
  report.findings = ofInput;
  CrossCheckRun(report, hasResult);
  Append(report.findings, FindingsOf(report.run));
  const std::vector<Finding> losses = LossesOf(report.run);
  if (!report.crossCheck) {
    Append(report.findings, losses);  // a result that nothing else vouches for is doubtful
  }
  SortFindings(report.findings);
  report.verdict = VerdictOf(report.run, report.findings);
  if (report.crossCheck) {
    Append(report.findings, losses);
    SortFindings(report.findings);
  }
}

Report RunAndJudge(const Inputs& inputs, const std::vector<DataRow>& rows,
                   const std::vector<Finding>& ofInput, const ProgressListener& listener) {
  Report report;
  report.inputs = inputs;
  report.run = RunLibrary(inputs, rows, inputs.mounting.value_or(Mounting{}),
                          CreateRunFolder(inputs.logFolder), listener);
  Judge(report, ofInput, inputs.mounting.has_value());
  return report;
}

// The linear algebra below the library waits for its 128 MB for ever where it does not get them.
void RequireMemory() {
  constexpr std::size_t kBytes = std::size_t{512} << 20;
  const std::unique_ptr<char, void (*)(void*)> block(static_cast<char*>(std::malloc(kBytes)),
                                                     std::free);
  if (block == nullptr) {
    throw std::runtime_error("there is too little memory: a calibration begins with 512 MB");
  }
  *static_cast<volatile char*>(block.get()) = 0;  // else a compiler may leave it all out
}

struct Shoot {
  std::vector<DataRow> rows;  // that the library can be given
  std::vector<Finding> findings;
};

Shoot ReadShoot(const Inputs& inputs) {
  Shoot shoot;
  const std::string content = ReadDataContent(inputs.data);
  const std::vector<DataRow> all = InReportedAxes(ReadRows(content), inputs.trackerFrame);
  shoot.findings = CheckData(content, all);
  const PhotographChecks checks = CheckPhotographs(all, inputs);
  Append(shoot.findings, checks.findings);
  for (std::size_t row = 0; row < all.size(); ++row) {
    if (!std::binary_search(checks.leaveOut.begin(), checks.leaveOut.end(), row)) {
      shoot.rows.push_back(all[row]);
    }
  }
  if (shoot.rows.empty() && !shoot.findings.empty()) {
    throw InputError(shoot.findings.front().text + ' ' + shoot.findings.front().advice);
  }
  RequireRows(inputs.data, all);
  return shoot;
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

// Without those that the cross-check left out.
std::vector<DataRow> GoodRows(const std::vector<DataRow>& rows, const Report& report) {
  std::set<std::size_t> bad;  // rows
  std::size_t checked = 0;
  const auto& photographs = report.run.record.photographs;
  for (std::size_t row = 0; row < photographs.size(); ++row) {
    if (photographs[row].raw && !report.crossCheck->perPhotograph.at(checked++).used) {
      bad.insert(row);
    }
  }
  std::vector<DataRow> good;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    if (bad.count(row) == 0) {
      good.push_back(rows[row]);
    }
  }
  return good;
}

// Of a run without a mounting: its zeros lead to a result or to one of these.
bool DependsOnMounting(const LibraryRun& run) {
  const std::set<int> codes = {kSuccess, kNewShootRecommended, 6, 13, 14};
  return run.code && codes.count(*run.code) > 0;
}

// A run without a mounting is no result, whatever its code.
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
    report.verdict.words += ' ' + wordsOfRun;  // such as that photographs are too few
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

Report Calibrate(const Inputs& inputs, const ProgressListener& listener) {
  RequirePossible(inputs);
  RequireMemory();
  const Shoot shoot = ReadShoot(inputs);
  const std::vector<Finding>& ofInput = shoot.findings;
  const std::vector<DataRow>& rows = shoot.rows;
  Report first = RunAndJudge(inputs, rows, ofInput, listener);
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
    Report second = RunAndJudge(again, GoodRows(rows, first), ofInput, listener);
    second.mountingIsStated = first.mountingIsStated;
    second.firstRun = std::make_shared<const Report>(std::move(first));
    return second;
  } catch (const std::exception& error) {
    // Such as a log folder that is gone meanwhile: what the first run found is not lost with it.
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
  Judge(report, {}, true);
  return report;
}

}  // namespace trackedcam::host
