// A library that is loaded while the program runs, by the means of the operating system.

#pragma once

/// Loads a library by its UTF-8 path; null when that fails.
void* LoadLibraryByName(const char* path);

/// The function of that name; null when the library has none.
void* FindFunction(void* library, const char* name);

/// Returns whether the library went.
bool UnloadLibrary(void* library);
