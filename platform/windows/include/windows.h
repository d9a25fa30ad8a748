#pragma once

// Declares the few calls of Windows that the component makes, with the names, parameters and results that Windows gives
// them, for systems that lack them. A path is bytes here: each byte travels as one wide character.

#include <unistd.h>  // gethostname, which has its Windows meaning here already

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
/// @param flags FROM_ADDRESS together with UNCHANGED_REFCOUNT, the one combination that is provided.
/// @param address any address in the module.
/// @param module receives the module, null when there is none.
/// @return not 0 when it was found.
BOOL GetModuleHandleExW(DWORD flags, LPCWSTR address, HMODULE* module);

/// Writes the absolute path of a module's file, with links resolved.
/// @param size the buffer's length in characters, its terminator included.
/// @return the path's length without terminator; `size` when the buffer was too small and holds a cut-off path; 0 when
///         the module has no file.
DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size);

/// Converts wide text to bytes. A character above 255 cannot be converted.
/// @param written receives the number of bytes written, terminator included; 0 when the conversion failed.
/// @param size the destination's length in bytes.
/// @param count how many characters to convert at most.
/// @return 0, or an error code.
errno_t wcstombs_s(std::size_t* written, char* destination, std::size_t size, const wchar_t* source, std::size_t count);
}
