// Turns exceptions into a status and a message.

#pragma once

#include <array>
#include <new>
#include <stdexcept>
#include <string>

#include "core/float_environment.h"
#include "host/input/inputs.h"
#include "trackedcam/trackedcam_c.h"

namespace trackedcam::c {

/// An error with its status.
class Refusal : public std::runtime_error {
 public:
  Refusal(trackedcam_status status, const std::string& message)
      : std::runtime_error(message), status_(status) {}
  trackedcam_status Status() const { return status_; }

 private:
  trackedcam_status status_;
};

/// A message with memory of its own, because it may report that there is none left.
struct Message {
  std::array<char, 1024> text = {};  // UTF-8, with a zero at the end

  /// Cuts a longer message at the end of a character.
  void Set(const char* message) noexcept;
};

/// Of this thread.
Message& LastError() noexcept;

/// Does the work with the default settings of the floating-point unit, and catches every exception.
template <class Work>
trackedcam_status Guarded(Message& message, Work work) noexcept {
  const DefaultFloatEnvironment environment;
  message.Set("");
  try {
    work();
    return TRACKEDCAM_OK;
  } catch (const Refusal& refusal) {
    message.Set(refusal.what());
    return refusal.Status();
  } catch (const host::InputError& error) {
    message.Set(error.what());
    return TRACKEDCAM_BAD_INPUT;
  } catch (const std::bad_alloc&) {
    message.Set("There is not enough memory.");
    return TRACKEDCAM_OUT_OF_MEMORY;
  } catch (const std::exception& error) {
    message.Set(error.what());
    return TRACKEDCAM_FAILURE;
  } catch (...) {
    message.Set("The progress callback threw an unknown exception.");
    return TRACKEDCAM_FAILURE;
  }
}

template <class Work>
trackedcam_status Guarded(Work work) noexcept {
  return Guarded(LastError(), work);
}

/// @throws Refusal if it is null.
template <class T>
void RequirePointer(const T* pointer, const char* name) {
  if (pointer == nullptr) {
    throw Refusal(TRACKEDCAM_INVALID_ARGUMENT, std::string(name) + " is NULL.");
  }
}

/// @throws Refusal if it is null or not UTF-8.
std::string RequireText(const char* text, const char* name);

/// As RequireText, but NULL becomes an empty text.
std::string OptionalText(const char* text, const char* name);

/// @throws Refusal if a struct of the caller has another size than the library's.
void RequireSize(std::size_t size, std::size_t expected, const char* name);

}  // namespace trackedcam::c
