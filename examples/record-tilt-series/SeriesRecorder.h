#pragma once

#include <VeloraTsLogging/ITsLogging.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

/// TS answered a creation with no identity: nothing was created, and nothing can be attached to it.
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
/// with one event that holds everything the section says. What stands before the sections, and titles, go into an event
/// of the series.
///
/// A file that ends in an error leaves everything before the error recorded: the section so far is saved, and neither
/// it nor the series is marked as done.
/// @param counts grows with what is recorded.
/// @param progress told the number of bytes read, now and then.
/// @throws MdocError naming file and line; NothingCreated; whatever TS raises.
void RecordSeries(Quor::Velora::Infra::TsLogging::ITsLogging& logging, const std::filesystem::path& file,
                  RecordCounts& counts, const std::function<void(std::uint64_t)>& progress);
