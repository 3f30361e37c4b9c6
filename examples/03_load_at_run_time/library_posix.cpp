#include <dlfcn.h>

#include "library.h"

void* LoadLibraryByName(const char* path) {
  return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void* FindFunction(void* library, const char* name) {
  return dlsym(library, name);
}

bool UnloadLibrary(void* library) {
  return dlclose(library) == 0;
}
