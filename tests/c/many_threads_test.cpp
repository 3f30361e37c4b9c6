// Sequences of calls from four threads, with handles that they share, confuse and free twice. Each
// call does its work or refuses; nothing is freed twice or forgotten.

#include <atomic>
#include <mutex>
#include <random>
#include <thread>
#include <vector>

#include <gmock/gmock.h>

#include "simulated_shoot.h"

namespace trackedcam::c {
namespace {

constexpr int kThreads = 4;
constexpr int kCallsPerThread = 1500;
constexpr int kMostRuns = 4;  // each takes as long as a thousand other calls
constexpr int kMostPages = 6;

enum class Kind { kShoot, kRun, kReport };

// What all threads know of. A handle stays in the list when it is freed.
class SharedHandles {
 public:
  void Add(Kind kind, void* handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    handles_.push_back(handle);
    kinds_.push_back(kind);
  }

  // Usually one of this kind, sometimes of another, or none.
  void* Any(Kind kind, std::mt19937& random) {
    const std::lock_guard<std::mutex> lock(mutex_);
    constexpr int kTrials = 20;
    void* handle = nullptr;
    for (int i = 0; i < kTrials && !handles_.empty() && random() % 50 != 0; ++i) {
      const std::size_t index = random() % handles_.size();
      handle = handles_[index];
      if (kinds_[index] == kind) {
        break;
      }
    }
    return handle;
  }

  std::vector<std::pair<Kind, void*>> All() {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::pair<Kind, void*>> all;
    for (std::size_t i = 0; i < handles_.size(); ++i) {
      all.emplace_back(kinds_[i], handles_[i]);
    }
    return all;
  }

 private:
  std::mutex mutex_;
  std::vector<void*> handles_;
  std::vector<Kind> kinds_;
};

class ManyThreads : public testing::Test {
 protected:
  trackedcam_shoot* Shoot(std::mt19937& random) {
    return static_cast<trackedcam_shoot*>(handles.Any(Kind::kShoot, random));
  }
  trackedcam_run* Run(std::mt19937& random) {
    return static_cast<trackedcam_run*>(handles.Any(Kind::kRun, random));
  }
  trackedcam_report* AnyReport(std::mt19937& random) {
    return static_cast<trackedcam_report*>(handles.Any(Kind::kReport, random));
  }

  // Only a run that has ended: another would write into a folder that the test removes.
  trackedcam_status Free(Kind kind, void* handle) {
    trackedcam_status status = TRACKEDCAM_OK;
    if (kind == Kind::kShoot) {
      status = trackedcam_shoot_free(static_cast<trackedcam_shoot*>(handle));
    } else if (kind == Kind::kReport) {
      status = trackedcam_report_free(static_cast<trackedcam_report*>(handle));
    } else {
      constexpr std::int32_t kTenMinutes = 600000;
      auto* run = static_cast<trackedcam_run*>(handle);
      std::int32_t isDone = 0;
      trackedcam_run_wait(run, kTenMinutes, &isDone);
      status = trackedcam_run_free(run);
    }
    freed += status == TRACKEDCAM_OK && handle != nullptr ? 1 : 0;
    return status;
  }

  // By reference: the call fills the handle while the arguments are made.
  template <class Handle>
  trackedcam_status Keep(Kind kind, trackedcam_status status, Handle* const& handle) {
    EXPECT_EQ(status == TRACKEDCAM_OK, handle != nullptr);
    if (handle != nullptr) {
      ++created;
      handles.Add(kind, handle);
    }
    return status;
  }

  trackedcam_status Start(std::mt19937& random) {
    if (++runs > kMostRuns) {
      return TRACKEDCAM_OK;
    }
    trackedcam_run* run = nullptr;
    const trackedcam_status status = trackedcam_start(Shoot(random), &settings, &run);
    runs -= run == nullptr ? 1 : 0;
    return Keep(Kind::kRun, status, run);
  }

  trackedcam_status RowOf(std::mt19937& random) {
    trackedcam_pose pose = {{0, 0, 1}, {1, 0, 0, 0}};
    const std::vector<const char*> names = {"a.jpg", "", "a,b.jpg", "a\nb.jpg", "a\xFF.jpg"};
    return trackedcam_shoot_add(Shoot(random), 1, names[random() % names.size()], &pose,
                                random() % 9 == 0 ? nullptr : &pose);
  }

  trackedcam_status CallReport(std::mt19937& random) {
    trackedcam_report* report = AnyReport(random);
    const std::vector<const char*> names = {
        "ue5", "unity", "opencv", "", "none", "/code", "/a/0", "/photographs", "/transformCamTc"};
    const char* name = names[random() % names.size()];
    const char* text = nullptr;
    std::size_t count = 0;
    std::int32_t number = 0;
    double values[16] = {};
    switch (random() % 8) {
      case 0:
        return trackedcam_report_level(report, &number);
      case 1:
        return trackedcam_report_transform_cam_tc(report, values);
      case 2:
        return trackedcam_report_json(report, &text);
      case 3:
        return trackedcam_report_numbers(report, name, values, random() % 17, &count);
      case 4:
        return trackedcam_report_count(report, name, &count);
      case 5:
        return trackedcam_report_export(report, name, nullptr, &text);
      case 6:
        return trackedcam_report_save(report, folder.File("result.json").c_str(), nullptr);
      default:
        return ++pages > kMostPages ? TRACKEDCAM_OK : trackedcam_report_page(report, "/", &text);
    }
  }

  trackedcam_status Call(std::mt19937& random) {
    trackedcam_shoot* shoot = nullptr;
    trackedcam_report* report = nullptr;
    std::int32_t isDone = 0;
    trackedcam_progress progress = {};
    switch (random() % 10) {
      case 0:
        return Keep(Kind::kShoot, trackedcam_shoot_create(&shoot), shoot);
      case 1:
        return Keep(Kind::kShoot, trackedcam_shoot_open(data.c_str(), &shoot), shoot);
      case 2:
        return RowOf(random);
      case 3:
        return Start(random);
      case 4:
        return trackedcam_run_poll(Run(random), &isDone, &progress, sizeof progress);
      case 5:
        return trackedcam_run_wait(Run(random), static_cast<std::int32_t>(random() % 3), &isDone);
      case 6:
        return Keep(Kind::kReport, trackedcam_run_report(Run(random), &report), report);
      case 7: {
        const Kind kind = static_cast<Kind>(random() % 3);
        return Free(kind, handles.Any(kind, random));
      }
      default:
        return CallReport(random);
    }
  }

  void CallMany(unsigned seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < kCallsPerThread; ++i) {
      const trackedcam_status status = Call(random);
      EXPECT_GE(status, TRACKEDCAM_OK);
      EXPECT_LE(status, TRACKEDCAM_WRONG_RESULT);
      EXPECT_NE(status, TRACKEDCAM_OUT_OF_MEMORY);
      EXPECT_NE(status, TRACKEDCAM_FAILURE) << trackedcam_last_error();
      if (status != TRACKEDCAM_OK) {
        EXPECT_STRNE(trackedcam_last_error(), "");
      }
    }
  }

  test::TemporaryFolder folder;
  std::string log = folder.File("log");
  std::string data = SimulatedShoot::Get().DataFile();
  trackedcam_settings settings = SettingsFor(log);
  SharedHandles handles;
  std::atomic<int> created{0};
  std::atomic<int> freed{0};
  std::atomic<int> runs{0};
  std::atomic<int> pages{0};
};

TEST_F(ManyThreads, MayCallEachFunctionWithSharedHandles) {
  constexpr unsigned kSeed = 1;  // the order among the threads is another in each run
  {
    OwnedShoot shoot = OpenedShoot();
    trackedcam_report* report = nullptr;
    ASSERT_EQ(Keep(Kind::kReport,
                   trackedcam_calibrate(shoot.Get(), &settings, nullptr, nullptr, &report), report),
              TRACKEDCAM_OK);
  }
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] { CallMany(kSeed + i); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& [kind, handle] : handles.All()) {
    Free(kind, handle);
    EXPECT_EQ(Free(kind, handle), TRACKEDCAM_INVALID_ARGUMENT);
  }
  EXPECT_EQ(freed, created);
  EXPECT_GT(created, 100);
}

}  // namespace
}  // namespace trackedcam::c
