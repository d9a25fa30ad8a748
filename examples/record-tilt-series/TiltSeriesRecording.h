#pragma once

#include <cstddef>

// The part of the example that records, as a shared library with two plain functions: a program links it, or a host in
// another language loads it. Neither function lets an exception out; what is wrong is said on standard error.

#if defined(_WIN32) && defined(TILT_SERIES_RECORDING_BUILD)
#define TILT_SERIES_RECORDING_API __declspec(dllexport)
#elif defined(_WIN32)
#define TILT_SERIES_RECORDING_API __declspec(dllimport)
#else
#define TILT_SERIES_RECORDING_API __attribute__((visibility("default")))
#endif

enum RecordingOutcome { Recorded = 0, SomethingFailed = 1, WrongUsage = 2, NothingRecorded = 3 };

extern "C" {

/// Makes a folder the current directory and the place of the record, with the settings that it lacks. The component's
/// log lines go to a file there, unless VELORA_LOG_FILE names another.
/// @return Recorded, or SomethingFailed when the folder cannot be used.
TILT_SERIES_RECORDING_API int EnterRecordFolder(const char* folder);

/// Brings the component up and records .mdoc files, each as one series; one that fails does not keep the others from
/// being recorded.
/// @param files `count` absolute paths.
/// @return Recorded; SomethingFailed; NothingRecorded when TS is not available.
TILT_SERIES_RECORDING_API int RecordTiltSeries(const char* const* files, std::size_t count);
}
