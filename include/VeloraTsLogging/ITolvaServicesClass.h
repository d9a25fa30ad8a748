#pragma once

#include <TSAL/Types.h>
#include <VeloraTsLogging/Export.h>

#include <map>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Activity versions under their names, ordered byte by byte.
using ActivityVersionMap = std::map<std::string, TolvaServices::Types::ActivityVersion>;

/// The gateway to TS: every call that the component makes to TS goes through the current object of this interface.
///
/// Without a host's doing that is the component's own, which forwards to TSAL. Implement this interface to put
/// something else in its place (a proxy, a recorder, a simulation) and install it with SetFactory(factory, gateway).
///
/// Duties of an implementation. The component calls it on its host's threads, with no lock of the gateway held;
/// during CreateTsLogging the lock of the logging object can be held (it is recursive). It fetches the gateway afresh
/// for every call, so an object that is replaced from inside one of its own operations lives until that call returns.
/// Calls of different threads can overlap when a host uses the component from several. Whatever an operation raises,
/// of any type, passes unchanged through the component, which catches only what follows the presence question in its
/// availability check. No answer is kept by the component except where an operation below says so.
///
/// The order of the slots is final; overloads are declared through VELORA_IN_SLOT_ORDER for that reason.
class ITolvaServicesClass {
 public:
  /// Slot 0. Runs where the last reference goes: at the latest when the library is unloaded.
  virtual ~ITolvaServicesClass() = default;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 1. Begins a TS session with three texts of the host's, which the component passes on without a meaning
    /// of its own. Every later call without a session of its own works in it.
    virtual void BeginSession(const std::string& sessionArg1, const std::string& sessionArg2,
                              const std::string& sessionArg3) = 0;,
    /// Slot 2. Begins a TS session. When it returns, the component forgets every pending event; when it raises, the
    /// bring-up ends there and they stay.
    virtual void BeginSession() = 0;)
  // clang-format on

  /// Slot 3. Says where the TS settings file lies. Asked for by every availability check and every bring-up, mostly
  /// with the same path.
  /// @param path folder of the settings file; empty means the current directory.
  virtual void SetTsalPath(const std::string& path) = 0;

  /// Slot 4. Whether the TS client service is installed on this computer. Asked first in every availability check
  /// (where a raise passes to the host) and before every creation of an execution.
  virtual bool IsTsServicePresent() = 0;

  /// Slot 5. Whether the TS server can be reached now. A raise counts as no.
  virtual bool IsConnectable() = 0;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 6. Registers the activities that a file describes and returns every activity version in it.
    /// @param activitiesFilePath the file's path, as the host gave its name or joined with the library's folder.
    /// @return the versions under their names, by value: the component makes the map its own, whatever it holds.
    virtual ActivityVersionMap RegisterAndGetActivityVersions(const std::string& activitiesFilePath) = 0;,
    /// Slot 7. The same with the empty path. The component has no use for it; it keeps its place in the table.
    virtual ActivityVersionMap RegisterAndGetActivityVersions() = 0;)
  // clang-format on

  /// Slot 8. Stores an execution, new or known.
  /// @param execution with an unset Id it is new: the operation sets Id to the identity under which it was stored,
  ///        and the component hands that guid to its host. Parent, where set, is alive during the call only.
  virtual void SaveActivityExecution(TolvaServices::Types::ActivityExecution& execution) = 0;

  /// Slot 9. Fetches a stored execution.
  /// @param id its identity, made from a text of the host's: it may be anything.
  /// @param flag true when the execution will be linked to, false when it will be saved again.
  /// @return the execution with Id set. The component uses it as it comes: an unknown guid is for the operation to
  ///         refuse.
  virtual TolvaServices::Types::ActivityExecution GetActivityExecution(const TolvaServices::Types::Tsid& id,
                                                                       bool flag) = 0;

  /// Slot 10. Reads a file of the host's whole: the instrument configuration.
  /// @param path the file's path; whether the file exists was not tested.
  /// @return its bytes as they are.
  virtual std::string ReadAllTextFromFile(const std::string& path) = 0;

  /// Slot 11. Stores an event with all its parameters.
  /// @param event shares its parameters with the pending event that it was copied from: not to be changed.
  /// @param configurationId the stored configuration that was in force; unset before the first was stored.
  /// @param activityExecutionId the execution that the event belongs to, alive during the call only; null for none.
  virtual void SaveEvent(const TolvaServices::Types::InstrumentEvent& event,
                         const TolvaServices::Types::Tsid& configurationId,
                         const TolvaServices::Types::Tsid* activityExecutionId) = 0;

  /// Slot 12. Stores the instrument configuration.
  /// @param configurationText the whole text of the instrument configuration file.
  /// @param text2 always empty.
  /// @param vendorName who made the instrument.
  /// @param hostName the computer's name; empty when it cannot be told.
  /// @param optionText the instrument's options: "None" when it has none, empty when it is not available.
  /// @param instrumentClass the kind of instrument.
  /// @param modelName the instrument's model; empty when it is not available.
  /// @return the result, kept whole by the component; its ConfigurationId goes with every later event.
  virtual TolvaServices::Types::InstrumentEventConfigResult SaveInstrumentConfigWithResult(
      const std::string& configurationText, const std::string& text2, const std::string& vendorName,
      const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
      const std::string& modelName) = 0;
};

}  // namespace Quor::Velora::Infra::TsLogging
