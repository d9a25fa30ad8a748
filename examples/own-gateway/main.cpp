// A test of a host that needs no TS: a gateway of the test receives what the host records.

#include "RecordingGateway.h"

#include <VeloraTsLogging/IFactory.h>

#include <fstream>
#include <iostream>

namespace {

using namespace Quor::Velora::Infra::TsLogging;

/// The tested step of a host: it records one exposure.
void Expose(ITsLogging& logging, const std::string& hole, double defocus) {
  const std::string exposure = logging.CreateActivityExecution(hole, "Exposure", "image 1", "");
  logging.CreateInstrumentEvent("Image");
  logging.AddInstrumentEventParameter("Image", "Defocus", defocus);
  logging.AddInstrumentEventParameter("Image", "Mode", "counting");
  logging.SaveInstrumentEvent("Image", exposure);
  logging.UpdateActivityExecution(exposure);
}

int Failed(const std::string& what) {
  std::cerr << "not as expected: " << what << '\n';
  return 1;
}

}  // namespace

int main() {
  // The component checks that these two files exist before it begins a session; the gateway does not read them.
  for (const char* const name : {"TSAL.config", "activities.xml"}) {
    const std::ofstream file(name);
  }

  const auto gateway = std::make_shared<RecordingGateway>(std::set<std::string>{"Hole", "Exposure"});
  SetFactory(GetFactory(), gateway);
  const auto logging = IFactory::CreateTsLogging("instrument.xml");
  const std::string hole = logging->CreateActivityExecution("Hole", "hole 4", "");
  Expose(*logging, hole, -1.5);

  const auto& exposure = gateway->Executions().at("2");
  if (exposure.version != "Exposure" || exposure.parent != hole) {
    return Failed("the exposure belongs to the hole");
  }
  if (exposure.events != std::vector<std::string>{"Image Defocus=-1.5 Mode=counting"}) {
    return Failed("the image is recorded with defocus and mode");
  }
  if (!exposure.isDone || gateway->Executions().at(hole).isDone) {
    return Failed("the exposure is done, the hole goes on");
  }
  std::cout << "The host records what it should.\n";
}
