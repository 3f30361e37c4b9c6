// Loads a library at run time with the functions of the operating system.

#pragma once

/// Loads a library by its UTF-8 path.
/// @return Null if that fails.
void* LoadLibraryByName(const char* path);

/// Finds a function by its name.
/// @return Null if the library has no such function.
void* FindFunction(void* library, const char* name);

/// @return Whether the library was unloaded.
bool UnloadLibrary(void* library);
