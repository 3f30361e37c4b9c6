#include <windows.h>

#include "c/platform.h"

namespace trackedcam::c {

void StayLoaded() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&StayLoaded), &module);
}

const bool kThreadsOutliveExit = false;

void AroundForks(void (* /*before*/)(), void (* /*inParent*/)(), void (* /*inChild*/)()) {}

}  // namespace trackedcam::c
