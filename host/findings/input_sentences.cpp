#include "host/findings/input_sentences.h"

#include <algorithm>
#include <cmath>

#include "host/text/text.h"

namespace trackedcam::host {
namespace {

// "row 3", "rows 3, 4, 5 and 9 more", "all 40 rows".
std::string Text(const RowNumbers& rows) {
  const std::size_t count = rows.lines.size();
  if (count > 1 && count == rows.all) {
    return "all " + std::to_string(count) + " rows";
  }
  Names lines;
  for (std::size_t i = 0; i < std::min(count, kNamed + 1); ++i) {
    lines.push_back(std::to_string(rows.lines[i]));
  }
  return (count == 1 ? "row " : "rows ") + List(lines, count);
}

// "row 3, which is left out", "rows 3 and 4 (field 5 of row 3), which are left out".
std::string LeftOut(const RowNumbers& rows, const std::string& more = "") {
  return Text(rows) + more +
         (rows.lines.size() == 1 ? ", which is left out" : ", which are left out");
}

std::string Text(const ImageSize& size) {
  return std::to_string(size[0]) + " x " + std::to_string(size[1]);
}

Names WithSizes(const Names& photographs, const std::vector<ImageSize>& sizes) {
  Names names;
  for (std::size_t i = 0; i < std::min(photographs.size(), sizes.size()); ++i) {
    names.push_back(photographs[i] + " (" + Text(sizes[i]) + ')');
  }
  return names;
}

// "30.38", of millimetres of a sensor.
std::string Rounded(double number, double scale) {
  return Shortest(std::round(number * scale) / scale);
}

constexpr const char* kFormats = "Use JPEG, PNG, TIFF, BMP or WebP.";
constexpr const char* kKeepInView = "Keep both trackers in view of the tracking system.";

}  // namespace

Sentences InputWriter::operator()(const RowFault& fault) const {
  const std::string rows = Text(fault.rows);
  const auto separator = [&](const char* name) -> Sentences {
    return {"separator",
            std::string(name) + " separate the fields in " + rows +
                ", but only commas are read, so no field is found.",
            "Save the file with commas between the fields."};
  };
  switch (fault.kind) {
    case RowFault::Kind::kSemicolons:
      return separator("Semicolons");
    case RowFault::Kind::kTabs:
      return separator("Tabs");
    case RowFault::Kind::kBars:
      return separator("Vertical bars");
    case RowFault::Kind::kDecimalCommas:
      return {"decimalComma",
              "Numbers have a decimal comma in " + rows + ", and each comma ends a field.",
              "Save the file with decimal points: 1.25, not 1,25."};
    case RowFault::Kind::kQuotes:
      return {"quotedFields",
              "Fields are in quotes in " + rows +
                  "; a quoted number is read as 0, and a quoted path finds no photograph.",
              "Save the file without quotes."};
    case RowFault::Kind::kExtraColumn:
      return {"extraColumn",
              "There is an extra column before the photograph in " + rows +
                  ", so every number is read from the wrong field.",
              "Remove the column: a row is the time, the photograph, then seven numbers for each "
              "tracker."};
    case RowFault::Kind::kPathFirst:
      return {"pathFirst",
              "The photograph is the first field in " + rows + ", and must be the second.",
              "Write the time first, then the photograph, then seven numbers for each tracker."};
    case RowFault::Kind::kTimeWithT:
      return {"timesBeginWithT",
              "The time begins with T in " + rows + ", and such lines are skipped.",
              "Write times that begin with a digit."};
    case RowFault::Kind::kNotUtf8:
      return {"encoding",
              "Characters are not UTF-8 in " + rows + ", but in no path of a photograph.",
              "Save the file as UTF-8."};
    case RowFault::Kind::kPathNotUtf8:
      return {"pathEncoding",
              "The path of the photograph is not UTF-8 in " + rows + ", so it cannot be opened.",
              "Save the file as UTF-8, or use ASCII letters in the names of the photographs."};
    case RowFault::Kind::kMissingFields:
      return {"missingFields", "Fields are missing or empty in " + LeftOut(fault.rows) + '.',
              "Write 16 fields in each row: time, photograph, then x, y, z, qw, qx, qy, qz of "
              "the camera's tracker and of the chart's."};
    case RowFault::Kind::kLostTracking:
      return {"lostTracking",
              "Tracking was lost in " + LeftOut(fault.rows) +
                  ": a tracker is at the origin, without rotation.",
              kKeepInView};
    case RowFault::Kind::kZeroQuaternion:
      return {"zeroQuaternion",
              "The quaternion of a tracker is zero in " + LeftOut(fault.rows) +
                  ": its rotation is unknown.",
              "Record w, x, y and z of each tracker's quaternion, and keep both trackers in view "
              "of the tracking system."};
    case RowFault::Kind::kRepeatedPoses:
      return {
          "repeatedPoses",
          "Both trackers repeat the poses of an earlier row in " + rows + ", to the last digit.",
          "If something moved between the photographs, the recorder did not update: remove "
          "these rows from the file."};
    case RowFault::Kind::kBlankLine:
      return {"blankLines", "Blank lines count as rows without a photograph: " + rows + '.',
              "Delete the blank lines."};
    case RowFault::Kind::kHeader:
      return {"header",
              "The header in " + rows +
                  " does not begin with \"Time,\", so it counts as a row without a photograph.",
              "Begin the header with \"Time,\"."};
  }
  return {};
}

Sentences InputWriter::operator()(const ValueFault& fault) const {
  const std::string row = std::to_string(fault.rows.lines.at(0));
  const std::string where =
      LeftOut(fault.rows, " (field " + std::to_string(fault.field) + " of row " + row +
                              (fault.photograph.empty() ? "" : ", ") + fault.photograph + ')');
  switch (fault.kind) {
    case ValueFault::Kind::kNotFinite:
      return {"noNumber", "A value is nan or infinite in " + where + '.', kKeepInView};
    case ValueFault::Kind::kTooLarge:
      return {"tooLarge", "A value is beyond +/-1e9 in " + where + '.', kKeepInView};
    case ValueFault::Kind::kText:
      return {"noNumber", "A field has text instead of a number in " + where + '.',
              "Write plain numbers, such as -1.25 or 1.5e-3."};
  }
  return {};
}

Sentences InputWriter::operator()(const QuaternionLength& fault) const {
  return {"quaternionLength",
          "The quaternion of a tracker does not have length 1 in " + Text(fault.rows) + " (" +
              Rounded(fault.length, 1000) + " in row " + std::to_string(fault.rows.lines.at(0)) +
              ").",
          "Check the order of the fields: position x, y, z, then quaternion w, x, y, z, of the "
          "camera's tracker and then of the chart's."};
}

Sentences InputWriter::operator()(const FrozenPose& fault) const {
  return {"frozenPose",
          std::string("The ") + Name(fault.tracker) +
              "'s tracker repeats the pose of the row before, to the last digit, while the other "
              "tracker moves, in " +
              (fault.isLeftOut ? LeftOut(fault.rows) : Text(fault.rows)) + '.',
          fault.isLeftOut
              ? "Let the recorder wait for a new pose of each tracker before it writes a row."
              : "If the tracker moved between these photographs, its pose was not updated: "
                "remove these rows from the file."};
}

Sentences InputWriter::operator()(const RepeatedRows& fault) const {
  return {"repeatedRows",
          "The photograph of an earlier row is repeated in " + Text(fault.rows) +
              ", and counts each time.",
          "Keep one row for each photograph."};
}

Sentences InputWriter::operator()(const LengthUnit& fault) const {
  return {"lengthUnit",
          "The two trackers are " + Fixed(fault.metres, 0) +
              " m apart; positions in millimetres would make it " + Fixed(fault.metres / 1000, 2) +
              " m, in centimetres " + Fixed(fault.metres / 100, 2) + " m.",
          "Calibrate again with --tracker-units=" + LikelyUnit(fault) +
              ", or record the positions in metres."};
}

Sentences InputWriter::operator()(const Utf16Text& /*fault*/) const {
  return {"encoding", "The data file is UTF-16 text, so no row can be read.",
          "Save the file as UTF-8, with commas between the fields."};
}

Sentences InputWriter::operator()(const PhotographFault& fault) const {
  const std::string names = PhotographNames(photographs, fault.count, fault.all);
  switch (fault.kind) {
    case PhotographFault::Kind::kNotAFile:
      return {"notAFile",
              "The data file names a pipe, a device or a folder instead of a photograph, which "
              "is left out: " +
                  names + '.',
              "Name image files in the second field."};
    case PhotographFault::Kind::kUnreadable:
      return {"unreadablePhotographs", "Photographs are empty or cannot be read: " + names + '.',
              "Copy them again."};
    case PhotographFault::Kind::kCostly:
      return {"costlyPhotograph",
              "Photographs that would take too much memory or time to decode are left out: " +
                  names + '.',
              "Save them again, as JPEG or PNG: a file has many times the bytes of its pixels, or "
              "a JPEG more than 64 scans."};
    case PhotographFault::Kind::kOtherFormat:
      return {"otherFormat",
              "Files that are not images of a supported format are left out: " + names + '.',
              kFormats};
    case PhotographFault::Kind::kCutShort:
      return {"cutShortPhotographs", "Files of photographs are cut short: " + names + '.',
              "Copy them again, and check the free space on the disk."};
  }
  return {};
}

Sentences InputWriter::operator()(const MissingPhotographs& fault) const {
  const std::string& name = fault.nameInFolder;
  const std::string missing =
      "Photographs cannot be found: " + PhotographNames(photographs, fault.count, fault.all);
  switch (fault.cause) {
    case MissingPhotographs::Cause::kSpaces:
      return {"missingPhotographs", missing + ", because their paths begin or end with a blank.",
              "Remove the blanks next to the commas: the path is " + fault.rightPath + '.'};
    case MissingPhotographs::Cause::kBackslashes:
      return {"missingPhotographs",
              missing + ", because backslashes separate folders on Windows only.",
              "Write slashes: " + fault.rightPath + '.'};
    case MissingPhotographs::Cause::kUnknown:
      break;
  }
  return {"missingPhotographs", missing + '.',
          fault.folder.empty()
              ? "Put the photographs where the data file says, or correct its second field."
          : fault.isWorkingFolder
              ? "Set --working-folder " + fault.folder + ": " + name + " is there."
              : name + " is in " + fault.folder +
                    ": correct the paths in the second field, or leave only the names and set "
                    "--working-folder."};
}

Sentences InputWriter::operator()(const HugePhotographs& fault) const {
  return {"hugePhotograph",
          "Photographs above 200 megapixels are left out: " +
              PhotographNames(WithSizes(photographs, fault.sizes), fault.count, fault.all) + '.',
          "Use the image size of the video."};
}

Sentences InputWriter::operator()(const PhotographSizes& fault) const {
  return {"photographSizes",
          "Photographs differ in size from the rest (" + Text(fault.common) +
              " pixels): " + List(WithSizes(photographs, fault.sizes), fault.count) + '.',
          "Calibrate again without them (--exclude), or take all photographs in one size."};
}

Sentences InputWriter::operator()(const OrientationTag& fault) const {
  const std::string names = PhotographNames(photographs, fault.count, fault.all);
  return {"orientationTag",
          (fault.isMixed ? "An orientation tag rotates some photographs and not the others, so "
                           "their sizes differ: "
                         : "An orientation tag makes decoders rotate the pixels, so the result "
                           "is for the rotated images, not for the camera: ") +
              names + '.',
          "Remove the tags without rotating the pixels, and switch off automatic rotation in the "
          "camera."};
}

Sentences InputWriter::operator()(const Aspect& fault) const {
  const auto [width, height] = fault.sensorMm;
  const double aspect = static_cast<double>(fault.image[0]) / static_cast<double>(fault.image[1]);
  const double usedWidth = std::min(width, height * aspect);
  const auto rounded = [](double mm) { return Rounded(mm, 100); };
  return {"aspect",
          "The photographs (" + Text(fault.image) +
              " pixels) have another aspect ratio than the sensor (" + rounded(width) + " x " +
              rounded(height) + " mm), so the focal length in millimetres is wrong.",
          "Give the part of the sensor that the image uses: --sensor " + rounded(usedWidth) + 'x' +
              rounded(usedWidth / aspect) + " if the pixels are square."};
}

Sentences InputWriter::operator()(const UnsharpPhotographs& fault) const {
  Names withWidths;
  for (std::size_t i = 0; i < std::min(photographs.size(), fault.edgeWidths.size()); ++i) {
    withWidths.push_back(photographs[i] + " (edges " + Fixed(fault.edgeWidths[i], 0) +
                         " pixels wide)");
  }
  return {"unsharpPhotographs",
          (fault.count == 1           ? "One photograph is"
           : fault.count == fault.all ? "All " + std::to_string(fault.all) + " photographs are"
                                      : std::to_string(fault.count) + " of " +
                                            std::to_string(fault.all) + " photographs are") +
              " blurred or not sharp: " + List(withWidths, fault.count) + '.',
          "Focus on the chart, light it well, use a short exposure with camera and chart at rest, "
          "and take these photographs again."};
}

}  // namespace trackedcam::host
