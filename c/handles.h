// What a host holds instead of an object: a number that is never used twice, in the form of a
// pointer. It is looked up and never dereferenced, so that a freed or invalid handle is detected.

#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "c/status.h"

namespace trackedcam::c {

/// One series for all kinds, so that a handle of another kind is detected too.
inline std::uintptr_t NextHandle() {
  static std::atomic<std::uintptr_t> last{0};
  constexpr std::uintptr_t kStep = 16;  // the alignment of pointers from an allocator
  return last += kStep;
}

template <class Handle, class Object>
class Handles {
 public:
  explicit Handles(const char* name) : name_(name) {}

  Handle* Add(std::shared_ptr<Object> object) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const std::uintptr_t number = NextHandle();
    objects_.emplace(number, std::move(object));
    return reinterpret_cast<Handle*>(number);  // NOLINT(performance-no-int-to-ptr): never read
  }

  /// The object stays valid while the caller has it, even if another thread frees the handle.
  /// @throws Refusal
  std::shared_ptr<Object> Get(const Handle* handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    return Find(handle)->second;
  }

  /// Does nothing for NULL.
  /// @throws Refusal
  void Free(const Handle* handle) {
    if (handle == nullptr) {
      return;
    }
    std::shared_ptr<Object> object;  // destroyed after the lock
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = Find(handle);
    object = std::move(found->second);
    objects_.erase(found);
  }

 private:
  using Objects = std::map<std::uintptr_t, std::shared_ptr<Object>>;

  typename Objects::iterator Find(const Handle* handle) {
    RequirePointer(handle, name_);
    const auto found = objects_.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == objects_.end()) {
      throw Refusal(TRACKEDCAM_INVALID_ARGUMENT,
                    std::string(name_) + " is not a valid handle, or is already freed.");
    }
    return found;
  }

  const char* name_;
  std::mutex mutex_;
  Objects objects_;
};

}  // namespace trackedcam::c
