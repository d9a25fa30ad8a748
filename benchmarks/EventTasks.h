#pragma once

#include <VeloraTsLogging/IFactory.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

// The same task in three ways: one event with a parameter of each kind, created, filled and saved. Six operations,
// eighteen lines. The logger drops the lines, and the gateway does nothing.

using PendingEvents = std::map<std::string, Quor::TolvaServices::Types::InstrumentEvent>;

/// As the component does it.
class ComponentWay {
 public:
  /// Brings the component up over a gateway that does nothing.
  /// @param present whether that says that there is a TS.
  explicit ComponentWay(bool present = true);
  void Create(const std::string& event);
  void AddFour(const std::string& event);
  void Save(const std::string& event);

  const std::shared_ptr<Quor::Velora::Infra::TsLogging::IFactory> factory;
  const std::shared_ptr<Quor::Velora::Infra::TsLogging::ITsLogging> logging;
};

/// As one would write it down at first: a string stream for each line, and the texts copied into each scope.
class ObviousWay {
 public:
  ObviousWay();
  void Create(const std::string& event);
  void AddFour(const std::string& event);
  void Save(const std::string& event);

 private:
  const std::shared_ptr<Quor::Velora::Infra::TsLogging::ITolvaServicesClass> gateway;
  PendingEvents pending;
};

/// What nobody can do without: the eighteen calls, with texts of the same length that are ready, the searches in the
/// table and the shared parameters.
class Floor {
 public:
  Floor();
  void Create(const std::string& event);
  void AddFour(const std::string& event);
  void Save(const std::string& event);
  /// An operation that writes its entry and exit lines and does nothing else.
  void WriteTraceLines() const;

 private:
  void Write(std::size_t operation);

  struct Lines {
    std::string entry, own, exit;
  };
  std::vector<Lines> operations;
  PendingEvents pending;
};

/// A gateway that does nothing.
/// @param present what it says when it is asked whether there is a TS.
/// @param wait how long TS takes for an execution, in microseconds.
std::shared_ptr<Quor::Velora::Infra::TsLogging::ITolvaServicesClass> IdleGateway(bool present = true, int wait = 0);

template <typename Way>
void RecordEvent(Way& way, const std::string& event) {
  way.Create(event);
  way.AddFour(event);
  way.Save(event);
}
