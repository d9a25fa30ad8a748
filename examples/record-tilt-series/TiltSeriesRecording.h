#pragma once

#include <cstddef>

// The part of the example that records, as a shared library with two C functions: a program can link it, and a host in
// another language can load it. The functions raise no exceptions; they write errors to standard error.

#if defined(_WIN32) && defined(TILT_SERIES_RECORDING_BUILD)
#define TILT_SERIES_RECORDING_API __declspec(dllexport)
#elif defined(_WIN32)
#define TILT_SERIES_RECORDING_API __declspec(dllimport)
#else
#define TILT_SERIES_RECORDING_API __attribute__((visibility("default")))
#endif

enum RecordingOutcome { Recorded = 0, SomethingFailed = 1, WrongUsage = 2, NothingRecorded = 3 };

extern "C" {

/// Makes a folder the current directory and the place of the records, and adds the settings that it lacks. The
/// component's log lines go to a file there, unless VELORA_LOG_FILE names another file.
/// @return Recorded, or SomethingFailed if the folder cannot be used.
TILT_SERIES_RECORDING_API int EnterRecordFolder(const char* folder);

/// Starts the component and records .mdoc files, each as one series. If one fails, the others are recorded all the
/// same.
/// @param files `count` absolute paths.
/// @param pace milliseconds that each section takes.
/// @return Recorded, SomethingFailed, or NothingRecorded if TS is not available.
TILT_SERIES_RECORDING_API int RecordTiltSeries(const char* const* files, std::size_t count, long long pace);
}
