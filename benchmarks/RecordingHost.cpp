#include "RecordingHost.h"

#include <cstdlib>
#include <stdexcept>

using namespace Quor::Velora::Infra::TsLogging;

RecordingHost::RecordingHost(const std::string& database) {
  folder.Write("TSAL.config", "<TSAL Instrument='Scope'><Database " + database + "/></TSAL>");
  folder.Write("activities.xml",
               "<Activities><Activity Name='Tomography'><ActivityVersion Name='TiltSeries' Version='1.0'/></Activity>"
               "</Activities>");
  folder.Write("instrument.xml", "<Instrument/>");
  setenv("VELORA_LOG_FILE", (folder / "log").c_str(), 0);
  current_path(folder.path);
  Start();
  execution = logging->CreateActivityExecution("TiltSeries", "ZValue 17", "a series");
  if (execution.empty()) {
    throw std::runtime_error("nothing is recorded, because TS is not available");
  }
  logging->CreateInstrumentEvent(event);
  logging->AddInstrumentEventParameter(event, "Good", true);
  logging->AddInstrumentEventParameter(event, "TiltAngle", -59.98);
  logging->AddInstrumentEventParameter(event, "Shot", 17);
  logging->AddInstrumentEventParameter(event, "Note", std::string("after focusing"));
}

void RecordingHost::Start() {
  const auto factory = GetFactory();
  SetFactory(factory, std::shared_ptr<ITolvaServicesClass>());  // so that nothing of a host before is cached
  logging = IFactory::CreateTsLogging("instrument.xml");
}
