#pragma once

// Declares the few calls of Windows that the component needs, for systems that lack them, with the same names,
// parameters and results. A path is bytes on these systems: each byte is passed as one wide character.

#include <unistd.h>  // gethostname has the same meaning on these systems

#include <cstddef>

extern "C" {

using BOOL = int;
using DWORD = unsigned int;
using HMODULE = void*;
using LPCWSTR = const wchar_t*;
using errno_t = int;

constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT = 2;
constexpr DWORD GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS = 4;

/// Finds the module that contains an address.
/// @param flags FROM_ADDRESS together with UNCHANGED_REFCOUNT, the only supported combination.
/// @param address any address in the module.
/// @param module receives the module; null if there is none.
/// @return not 0 if it was found.
BOOL GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module);

/// Writes the absolute path of a module's file, with links resolved.
/// @param size the length of the buffer in characters, with the terminator.
/// @return the length of the path without terminator; `size` if the buffer was too small and has the start of the path;
///         0 if the module has no file.
DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size);

/// Converts wide text to bytes. A character above 255 cannot be converted.
/// @param written receives the number of written bytes, with the terminator; 0 if the conversion failed.
/// @param size the length of the destination in bytes.
/// @param count the highest number of characters to convert.
/// @return 0, or an error code.
errno_t wcstombs_s(std::size_t* written, char* destination, std::size_t size, const wchar_t* source, std::size_t count);
}
