#pragma once

#include <windows.h>

extern "C" {
/// Removes the last element of a path and the separator before it. The root keeps its separator.
/// @return not 0 if something was removed.
BOOL PathRemoveFileSpecW(wchar_t* path);
}
