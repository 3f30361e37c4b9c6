#include <string>
#include <windows.h>

#include "library.h"

void* LoadLibraryByName(const char* path) {
  const int size = MultiByteToWideChar(CP_UTF8, 0, path, -1, nullptr, 0);
  std::wstring widePath(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, path, -1, &widePath[0], size);
  return LoadLibraryW(widePath.c_str());
}

void* FindFunction(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

bool UnloadLibrary(void* library) {
  return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}
