#pragma once

#include <windows.h>

extern "C" {
/// Cuts the last element off a path, with the separator before it; the root keeps its separator.
/// @return not 0 when something was cut off.
BOOL PathRemoveFileSpecW(wchar_t* path);
}
