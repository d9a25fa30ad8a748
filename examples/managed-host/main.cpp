// What a managed host does with the TS logging component: it loads the library by its file name, finds the one function
// with an unmangled name, and sets a parent execution. All that the native side records then belongs to this parent.

#include "HostOptions.h"
#include "TiltSeriesRecording.h"

#include <VeloraSystem/Console.h>
#include <VeloraSystem/LoadedLibrary.h>
#include <VeloraSystem/Path.h>
#include <VeloraText/Printable.h>
#include <VeloraTsLogging/ITsLoggingConfigurator.h>

#include <filesystem>
#include <iostream>

namespace fs = std::filesystem;
using Quor::Velora::Unmanaged::ITsLoggingConfigurator;
using Velora::System::LoadedLibrary;
using Velora::Text::WriteLine;

namespace {

std::string SetParent(const LoadedLibrary& component, const std::string& node) {
  const auto fill = component.Find<decltype(GetTsLogingConfigurator)>("GetTsLogingConfigurator");
  std::shared_ptr<ITsLoggingConfigurator> configurator;
  fill(configurator);
  return configurator->SetParentActivityExec(node, "", "", "");
}

int Main(int argc, char** argv) {
  std::string library;
  std::string node;
  HostOptions options("Records tilt series from .mdoc files, all of them under one execution.");
  options.program.Own().AddRequiredText("--library", library, "The file of the TS logging library");
  options.program.Own().AddRequiredText("--under", node, "The node of the parent execution");
  if (const std::optional<int> done = options.Read(argc, argv)) {
    return *done;
  }
  const LoadedLibrary component(Velora::System::TextOf(fs::absolute(Velora::System::PathOf(library))));
  const LoadedLibrary recording(TILT_SERIES_RECORDING);
  const int entered = recording.Find<decltype(EnterRecordFolder)>("EnterRecordFolder")(options.data.c_str());
  if (entered != Recorded) {
    return entered;
  }
  const std::string parent = SetParent(component, node);
  if (parent.empty()) {
    std::cout << "Nothing was recorded: TS is not available." << std::endl;
    return NothingRecorded;
  }
  WriteLine(std::cout, "The parent of all series is " + node + ", execution " + parent);
  return recording.Find<decltype(RecordTiltSeries)>("RecordTiltSeries")(options.Files().data(), options.files.size(),
                                                                        options.pace);
}

}  // namespace

int main(int argc, char** argv) {
  const Velora::System::StandardStreams streams;
  try {
    return Main(argc, argv);
  } catch (const std::exception& reason) {
    WriteLine(std::cerr, std::string("Nothing was recorded: ") + reason.what());
    return SomethingFailed;
  }
}
