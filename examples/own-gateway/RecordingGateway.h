#pragma once

#include <VeloraTsLogging/ITolvaServicesClass.h>

#include <map>
#include <set>
#include <string>
#include <vector>

/// A TS for tests of hosts. It is always available and keeps records in memory: it uses no file and no server. Only one
/// thread can use it at a time, as with the component.
class RecordingGateway final : public Quor::Velora::Infra::TsLogging::ITolvaServicesClass {
 public:
  using Event = Quor::TolvaServices::Types::InstrumentEvent;
  using Execution = Quor::TolvaServices::Types::ActivityExecution;
  using Tsid = Quor::TolvaServices::Types::Tsid;
  using Versions = Quor::Velora::Infra::TsLogging::ActivityVersionMap;
  using ConfigResult = Quor::TolvaServices::Types::InstrumentEventConfigResult;

  /// An execution as it was last saved.
  struct Kept {
    std::string version, node, description, parent;  ///< `parent` is a guid; empty at the top.
    bool isDone = false;
    std::vector<std::string> events;  ///< As "NAME parameter=value parameter=value".
  };

  /// @param versionNames the activity versions that it knows, instead of those in an activities file.
  explicit RecordingGateway(std::set<std::string> versionNames) : versionNames(std::move(versionNames)) {}

  /// The executions by their guids, which are "1" for the first, "2"...
  const std::map<std::string, Kept>& Executions() const { return executions; }

  void BeginSession() override {}
  void BeginSession(const std::string&, const std::string&, const std::string&) override {}
  void SetTsalPath(const std::string&) override {}
  bool IsTsServicePresent() override { return true; }
  bool IsConnectable() override { return true; }
  Versions RegisterAndGetActivityVersions(const std::string& file) override;
  Versions RegisterAndGetActivityVersions() override { return RegisterAndGetActivityVersions(""); }
  void SaveActivityExecution(Execution& execution) override;
  Execution GetActivityExecution(const Tsid& id, bool flag) override;
  std::string ReadAllTextFromFile(const std::string&) override { return {}; }
  void SaveEvent(const Event& event, const Tsid& configuration, const Tsid* execution) override;
  ConfigResult SaveInstrumentConfigWithResult(const std::string&, const std::string&, const std::string&,
                                              const std::string&, const std::string&, const std::string&,
                                              const std::string&) override {
    return {};
  }

 private:
  Kept& Find(const Tsid& id);

  const std::set<std::string> versionNames;
  std::map<std::string, Kept> executions;
};
