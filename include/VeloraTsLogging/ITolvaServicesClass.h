#pragma once

#include <TSAL/Types.h>
#include <VeloraTsLogging/Export.h>

#include <map>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Activity versions by name. The names are compared byte by byte.
using ActivityVersionMap = std::map<std::string, TolvaServices::Types::ActivityVersion>;

/// The gateway to TS. The component makes every call to TS through the current object of this interface.
///
/// The default object belongs to the component and forwards to TSAL. To replace it by a proxy, a recorder or a
/// simulation, implement this interface and call SetFactory(factory, gateway).
///
/// What an implementation must expect:
/// - The component calls it on the threads of the host and holds no lock of the gateway. During CreateTsLogging it can
///   hold the lock of the logging object, which is recursive.
/// - The component fetches the gateway again for every call. An object that is replaced inside one of its own
/// operations
///   lives until that operation returns.
/// - Calls of different threads can overlap when a host uses the component on several threads.
/// - An exception of any type passes unchanged through the component. Only the availability check catches exceptions,
///   and only those raised after the call of slot 4.
/// - The component keeps no result, except where an operation below says so.
///
/// The order of the slots is final. VELORA_IN_SLOT_ORDER gives overloads the same order with every compiler.
class ITolvaServicesClass {
 public:
  /// Slot 0. Runs when the last reference is released, at the latest when the library is unloaded.
  virtual ~ITolvaServicesClass() = default;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 1. Begins a TS session with three texts of the host. The component passes them on and does not use them.
    /// All later calls belong to this session.
    virtual void BeginSession(const std::string& sessionArg1, const std::string& sessionArg2,
                              const std::string& sessionArg3) = 0;,
    /// Slot 2. Begins a TS session. When it returns, the component removes all pending events. When it raises, the
    /// bring-up ends and the pending events stay.
    virtual void BeginSession() = 0;)
  // clang-format on

  /// Slot 3. Sets the folder of the TS settings file. Every availability check and every bring-up calls it, mostly with
  /// the same path.
  /// @param path folder of the settings file; empty means the current directory.
  virtual void SetTsalPath(const std::string& path) = 0;

  /// Slot 4. Returns whether the TS client service is installed on this computer. It is the first call of every
  /// availability check, and is called before every creation of an execution. An exception passes to the host.
  virtual bool IsTsServicePresent() = 0;

  /// Slot 5. Returns whether the TS server can be reached now. The component takes an exception as false.
  virtual bool IsConnectable() = 0;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 6. Registers the activities that a file describes and returns all activity versions of the file.
    /// @param activitiesFilePath the file name as the host gave it, or that name in the folder of the library.
    /// @return the versions by name. The component keeps the returned map, also an empty one.
    virtual ActivityVersionMap RegisterAndGetActivityVersions(const std::string& activitiesFilePath) = 0;,
    /// Slot 7. Registers activities with the empty path. The component does not call it; the order of the slots is
    /// final, so it stays.
    virtual ActivityVersionMap RegisterAndGetActivityVersions() = 0;)
  // clang-format on

  /// Slot 8. Stores a new or a known execution.
  /// @param execution an execution whose Id is unset is new. The operation sets Id to the identity of the stored
  ///        execution, and the component returns its guid to the host. Parent can be set and is valid during the call.
  virtual void SaveActivityExecution(TolvaServices::Types::ActivityExecution& execution) = 0;

  /// Slot 9. Fetches a stored execution.
  /// @param id its identity, made from a text of the host. The component does not check the text.
  /// @param flag true when the component links to the execution, false when it saves the execution again.
  /// @return the execution with Id set. The component does not check it: the operation must raise for an unknown guid.
  virtual TolvaServices::Types::ActivityExecution GetActivityExecution(const TolvaServices::Types::Tsid& id,
                                                                       bool flag) = 0;

  /// Slot 10. Reads the whole instrument configuration file of the host.
  /// @param path path of the file. The component does not check whether the file exists.
  /// @return the bytes of the file, unchanged.
  virtual std::string ReadAllTextFromFile(const std::string& path) = 0;

  /// Slot 11. Stores an event with all its parameters.
  /// @param event a copy of the pending event. It shares the parameters with the pending event: do not change them.
  /// @param configurationId the configuration that was stored last; unset when none was stored.
  /// @param activityExecutionId the execution that the event belongs to, or null for none. Valid during the call only.
  virtual void SaveEvent(const TolvaServices::Types::InstrumentEvent& event,
                         const TolvaServices::Types::Tsid& configurationId,
                         const TolvaServices::Types::Tsid* activityExecutionId) = 0;

  /// Slot 12. Stores the instrument configuration.
  /// @param configurationText the whole text of the instrument configuration file.
  /// @param text2 always empty.
  /// @param vendorName name of the manufacturer of the instrument.
  /// @param hostName name of the computer; empty when the system does not return it.
  /// @param optionText options of the instrument: "None" when it has none, empty when the instrument is not available.
  /// @param instrumentClass class of the instrument.
  /// @param modelName model of the instrument; empty when the instrument is not available.
  /// @return the result, which the component keeps. Its ConfigurationId is saved with every later event.
  virtual TolvaServices::Types::InstrumentEventConfigResult SaveInstrumentConfigWithResult(
      const std::string& configurationText, const std::string& text2, const std::string& vendorName,
      const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
      const std::string& modelName) = 0;
};

}  // namespace Quor::Velora::Infra::TsLogging
