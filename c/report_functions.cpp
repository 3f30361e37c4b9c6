// The functions of the header that read a report.

#include <algorithm>

#include "c/report.h"
#include "host/calibrate.h"
#include "host/text/file_text.h"

using namespace trackedcam::c;
namespace host = trackedcam::host;

namespace {

static_assert(TRACKEDCAM_GOOD == static_cast<int>(host::Level::kGood) &&
              TRACKEDCAM_DOUBT == static_cast<int>(host::Level::kDoubtful) &&
              TRACKEDCAM_WRONG == static_cast<int>(host::Level::kWrong) &&
              TRACKEDCAM_FAILED == static_cast<int>(host::Level::kFailed));

std::filesystem::path PathOf(const char* text, const char* name) {
  return std::filesystem::absolute(std::filesystem::u8path(RequireText(text, name)));
}

// Where the library did not get so far there are none.
std::vector<double> FiguresOf(const Report& report, const char* pointer, std::size_t count) {
  std::vector<double> figures = report.Numbers(pointer);
  if (figures.size() != count) {
    throw Refusal(TRACKEDCAM_NOT_THERE, std::string("The library found no ") + (pointer + 1) + '.');
  }
  return figures;
}

}  // namespace

trackedcam_status trackedcam_report_level(trackedcam_report* report, int32_t* level) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(level, "level");
    *level = static_cast<int32_t>(read->Level());
  });
}

trackedcam_status trackedcam_report_code(trackedcam_report* report, int32_t* code) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(code, "code");
    *code = static_cast<int32_t>(read->Numbers("/code").at(0));
  });
}

trackedcam_status trackedcam_report_verdict(trackedcam_report* report, const char** words,
                                            const char** advice) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(words, "words");
    RequirePointer(advice, "advice");
    const char* const readWords = read->Text("/verdict/words");
    *advice = read->Text("/verdict/advice");
    *words = readWords;
  });
}

trackedcam_status trackedcam_report_lens(trackedcam_report* report, trackedcam_lens* lens,
                                         size_t lens_size) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(lens, "lens");
    RequireSize(lens_size, sizeof(trackedcam_lens), "lens");
    const std::vector<double> size = FiguresOf(*read, "/imageSize", 2);
    const std::vector<double> focal = FiguresOf(*read, "/normFocal", 2);
    const std::vector<double> centre = FiguresOf(*read, "/normCenter", 2);
    const std::vector<double> k = FiguresOf(*read, "/distortion", 5);
    const std::vector<double> fov = FiguresOf(*read, "/fieldOfView", 2);
    const std::vector<double> focalMm = FiguresOf(*read, "/focalLengthMm", 1);
    *lens = {size[0],
             size[1],
             focal[0] * size[0],
             focal[1] * size[1],
             centre[0] * size[0],
             centre[1] * size[1],
             k[0],
             k[1],
             k[2],
             k[3],
             k[4],
             fov[0],
             fov[1],
             focalMm[0]};
  });
}

trackedcam_status trackedcam_report_transform_cam_tc(trackedcam_report* report,
                                                     double transform_cam_tc[16]) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(transform_cam_tc, "transform_cam_tc");
    const std::vector<double> transform = FiguresOf(*read, "/transformCamTc", 16);
    std::copy(transform.begin(), transform.end(), transform_cam_tc);
  });
}

trackedcam_status trackedcam_report_json(trackedcam_report* report, const char** json) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(json, "json");
    *json = read->WholeText();
  });
}

trackedcam_status trackedcam_report_numbers(trackedcam_report* report, const char* pointer,
                                            double* values, size_t capacity, size_t* count) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string place = RequireText(pointer, "pointer");
    RequirePointer(count, "count");
    if (capacity > 0) {
      RequirePointer(values, "values");
    }
    const std::vector<double> numbers = read->Numbers(place);
    *count = numbers.size();
    if (capacity < numbers.size()) {
      throw Refusal(TRACKEDCAM_TOO_SMALL, place + " has " + std::to_string(numbers.size()) +
                                              " numbers, more than there is room for.");
    }
    std::copy(numbers.begin(), numbers.end(), values);
  });
}

trackedcam_status trackedcam_report_text(trackedcam_report* report, const char* pointer,
                                         const char** text) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string place = RequireText(pointer, "pointer");
    RequirePointer(text, "text");
    *text = read->Text(place);
  });
}

trackedcam_status trackedcam_report_count(trackedcam_report* report, const char* pointer,
                                          size_t* count) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string place = RequireText(pointer, "pointer");
    RequirePointer(count, "count");
    *count = read->Count(place);
  });
}

trackedcam_status trackedcam_report_export(trackedcam_report* report, const char* engine,
                                           const char* parent_axes, const char** json) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const char* const text =
        read->Export(RequireText(engine, "engine"), OptionalText(parent_axes, "parent_axes"));
    if (json != nullptr) {
      *json = text;
    }
  });
}

trackedcam_status trackedcam_report_lens_file(trackedcam_report* report, const char* parent_axes,
                                              const char* name, const char** text) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    const std::string lens = RequireText(name, "name");
    RequirePointer(text, "text");
    *text = read->LensFile(OptionalText(parent_axes, "parent_axes"), lens);
  });
}

trackedcam_status trackedcam_report_page(trackedcam_report* report, const char* page_folder,
                                         const char** html) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    RequirePointer(html, "html");
    *html = read->Page(page_folder == nullptr ? std::filesystem::path()
                                              : PathOf(page_folder, "page_folder"));
  });
}

trackedcam_status trackedcam_report_save(trackedcam_report* report, const char* json_file,
                                         const char* page_file) {
  return Guarded([&] {
    const auto read = Reports().Get(report);
    // Both are looked at before one is written.
    const auto json =
        json_file == nullptr ? std::filesystem::path() : PathOf(json_file, "json_file");
    const auto page =
        page_file == nullptr ? std::filesystem::path() : PathOf(page_file, "page_file");
    if (!json.empty()) {
      host::WriteFile(json, read->JsonText());
    }
    if (!page.empty()) {
      host::WriteFile(page, read->PageText(page.parent_path()));
    }
  });
}

trackedcam_status trackedcam_report_free(trackedcam_report* report) {
  return Guarded([&] { Reports().Free(report); });
}
