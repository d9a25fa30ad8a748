#pragma once

#include <VeloraTsLogging/ITsLogging.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

/// TS returned no identity for a creation: nothing was created, so nothing can be attached to it.
class NothingCreated : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How much was recorded.
struct RecordCounts {
  std::uint64_t series = 0;
  std::uint64_t sections = 0;
  std::uint64_t events = 0;
  std::uint64_t parameters = 0;
};

/// Records one .mdoc file: an execution of "TiltSeries" for the file, and below it one of "Section" for each section,
/// with one event that has all values of the section. Titles, and what stands before the sections, go into an event of
/// the series.
///
/// If the file has an error, everything before it is recorded: the section is saved as far as it was read, and neither
/// the section nor the series is marked as done.
/// @param counts is increased by what is recorded.
/// @param progress is called with the number of bytes read so far, from time to time.
/// @throws MdocError with file and line; NothingCreated; the exceptions of TS.
void RecordSeries(Quor::Velora::Infra::TsLogging::ITsLogging& logging, const std::filesystem::path& file,
                  RecordCounts& counts, const std::function<void(std::uint64_t)>& progress);
