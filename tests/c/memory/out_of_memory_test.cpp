// If memory runs out, every function returns a status. Here operator new of the whole process fails
// on request; the library uses it too.

#include <atomic>
#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "../simulated_shoot.h"

namespace {

std::atomic<long> allowed{
    -1};  // allocations before one fails, of the counted thread; -1: none fails
thread_local bool isCounted = false;

}  // namespace

void* operator new(std::size_t size) {
  if (isCounted && allowed >= 0 && allowed-- == 0) {
    throw std::bad_alloc();
  }
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
    return memory;
  }
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}

namespace trackedcam::c {
namespace {

// Lets each allocation of the call fail in turn, until the call succeeds.
template <class Call>
void FailEach(Call call) {
  long failed = 0;
  for (trackedcam_status status = TRACKEDCAM_OUT_OF_MEMORY; status != TRACKEDCAM_OK; ++failed) {
    allowed = failed;
    isCounted = true;
    status = call();
    isCounted = false;
    ASSERT_LT(failed, 100000);
    if (status != TRACKEDCAM_OK) {
      // Some steps report another error when memory runs out.
      EXPECT_TRUE(status == TRACKEDCAM_OUT_OF_MEMORY || status == TRACKEDCAM_FAILURE ||
                  status == TRACKEDCAM_BAD_INPUT)
          << status << ' ' << trackedcam_last_error();
      EXPECT_STRNE(trackedcam_last_error(), "");
    }
  }
  EXPECT_GT(failed, 1);
}

TEST(OutOfMemory, OfAShoot) {
  OwnedShoot shoot;
  FailEach([&] { return trackedcam_shoot_create(shoot.Fill()); });
  const trackedcam_pose pose = {{0, 0, 0}, {1, 0, 0, 0}};
  FailEach([&] {
    return trackedcam_shoot_add(shoot.Get(), 0, "a photograph with a long name.jpg", &pose, &pose);
  });
}

TEST(OutOfMemory, OfAReport) {
  const test::TemporaryFolder folder;
  const std::string log = folder.File("log");
  const OwnedReport report = Calibrated(OpenedShoot(), SettingsFor(log));
  const char* text = nullptr;
  FailEach([&] { return trackedcam_report_text(report.Get(), "/verdict/message", &text); });
  std::vector<double> numbers(16);
  std::size_t count = 0;
  FailEach([&] {
    return trackedcam_report_numbers(report.Get(), "/transformCamTc", numbers.data(), 16, &count);
  });
  EXPECT_EQ(NumbersAt(report, "/transformCamTc"), numbers);
}

TEST(OutOfMemory, AtTheStartOfARun) {
  const test::TemporaryFolder folder;
  const std::string log = folder.File("log");
  const OwnedShoot shoot = OpenedShoot();
  const trackedcam_settings settings = SettingsFor(log);
  OwnedRun run;
  FailEach([&] { return trackedcam_start(shoot.Get(), &settings, run.Fill()); });
  std::int32_t isDone = 0;
  EXPECT_EQ(trackedcam_run_wait(run.Get(), -1, &isDone), TRACKEDCAM_OK);
}

}  // namespace
}  // namespace trackedcam::c
