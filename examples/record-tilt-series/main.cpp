// Records tilt series from .mdoc files through the TS logging component.

#include "HostOptions.h"
#include "TiltSeriesRecording.h"

#include <VeloraSystem/Console.h>
#include <VeloraText/Printable.h>

#include <iostream>

namespace {

int Main(int argc, char** argv) {
  HostOptions options(
      "Records tilt series from .mdoc files: one execution for each file and one for each of its sections. If a series "
      "of "
      "the same name and content is there already, it says so and records it once more.");
  if (const std::optional<int> done = options.Read(argc, argv)) {
    return *done;
  }
  const int entered = EnterRecordFolder(options.data.c_str());
  return entered != Recorded ? entered : RecordTiltSeries(options.Files().data(), options.files.size(), options.pace);
}

}  // namespace

int main(int argc, char** argv) {
  const Velora::System::StandardStreams streams;
  try {
    return Main(argc, argv);
  } catch (const std::exception& reason) {
    Velora::Text::WriteLine(std::cerr, reason.what());
    return SomethingFailed;
  }
}
