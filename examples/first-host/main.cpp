// A first host: one run with one event. docs/hosts.md explains each call.

#include <VeloraTsLogging/IFactory.h>

#include <exception>
#include <iostream>
#include <string>

int main() try {
  using Quor::Velora::Infra::TsLogging::IFactory;
  const auto logging = IFactory::CreateTsLogging("instrument.xml");
  const std::string run = logging->CreateActivityExecution("Session", "grid 7", "a first run");
  if (run.empty()) {
    std::cerr << "Nothing was recorded: TS is not available. Run velora-ts check to learn why.\n";
    return 1;
  }
  logging->CreateInstrumentEvent("Image");
  logging->AddInstrumentEventParameter("Image", "Defocus", -1.5);
  logging->AddInstrumentEventParameter("Image", "Camera", "left port");
  logging->SaveInstrumentEvent("Image", run);
  logging->UpdateActivityExecution(run);
  std::cout << "Recorded run " << run << '\n';
} catch (const std::exception& reason) {
  std::cerr << "Not everything was recorded: " << reason.what() << '\n';
  return 1;
}
