#pragma once

#include "support/ScratchFolder.h"

#include <VeloraTsLogging/IFactory.h>

#include <memory>
#include <string>

/// A host that records through the exported surface, as every host does: the component with the default logger, which
/// writes to a file, over the local TS.
class RecordingHost {
 public:
  /// Brings TS up and creates an execution, in a folder of its own.
  /// @param database the attributes that name the database in TSAL.config.
  explicit RecordingHost(const std::string& database = "Backend='sqlite3' Connection='ts.db'");

  /// Brings TS up anew, as a host does that starts in this store.
  void Start();
  /// Saves an event with a parameter of each kind, which belongs to the execution.
  void SaveEvent() const { logging->SaveInstrumentEvent(event, execution); }
  const std::string& Execution() const { return execution; }
  /// The file of the store.
  std::filesystem::path Store() const { return folder / "ts.db"; }

 private:
  const ScratchFolder folder;
  const std::string event = "Exposure";
  std::shared_ptr<Quor::Velora::Infra::TsLogging::ITsLogging> logging;
  std::string execution;
};
