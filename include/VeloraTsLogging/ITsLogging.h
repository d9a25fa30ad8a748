#pragma once

#include <VeloraTsLogging/Export.h>

#include <cstdint>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Records what an automated run does: instrument events with typed parameters, and executions of activities.
///
/// The component implements this interface and a host calls it; a host obtains it from IFactory::CreateTsLogging, or
/// installs an implementation of its own with SetFactory. A usual order: create an execution, then for each event
/// CreateInstrumentEvent, AddInstrumentEventParameter for each value, SaveInstrumentEvent with the execution's guid;
/// at the end UpdateActivityExecution.
///
/// Whether TS can be used was asked when the object was created and is asked again at each CreateTsLogging and each
/// SetParentActivityExec. While it cannot, every operation here writes its trace lines, a creation of an execution also
/// an error line, and does nothing else: it stays harmless, and records nothing.
///
/// Each operation runs on the caller's thread and raises whatever TS raises, unchanged. All of them work on tables
/// of the process without a lock: never run two at once, nor one beside a CreateTsLogging. Texts are bytes and pass
/// as they are, zero bytes included.
///
/// The order of the slots is final. The overloads are declared through VELORA_IN_SLOT_ORDER, because compilers do
/// not agree on where overloads of one name stand.
class ITsLogging {
 public:
  /// Slot 0.
  virtual ~ITsLogging() = default;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 1. Creates an execution of a registered activity version as a child of another execution.
    /// @param parentActivityGuid guid of the parent, as a creation returned it; empty creates nothing.
    /// @param regActivityVersionName name of the activity version, as the activities file has it; for a name that is
    ///        not registered the execution carries an empty version.
    /// @param node where it runs, in the host's own terms.
    /// @param description free text. An execution with an empty one is not linked to by later children that find it
    ///        through the process-wide parent.
    /// @return the new execution's guid, the only handle to it: without it the execution can never be done. Empty when
    ///         TS cannot be used, is not present, or no parent was given.
    /// @throws what TS raises, for a parent that it does not know among other things; then nothing was created.
    [[nodiscard]] virtual std::string CreateActivityExecution(const std::string& parentActivityGuid,
                                                              const std::string& regActivityVersionName,
                                                              const std::string& node,
                                                              const std::string& description) = 0;,
    /// Slot 2. Creates an execution as a child of the process-wide parent, or at the top when no parent was set.
    /// Parameters, result and failures are those of slot 1. The process-wide parent is the one that a managed host
    /// sets; it is read once, at the start.
    [[nodiscard]] virtual std::string CreateActivityExecution(const std::string& regActivityVersionName,
                                                              const std::string& node,
                                                              const std::string& description) = 0;)
  // clang-format on

  /// Slot 3. Says that an execution is done: stamps it with status 14 and the current time. Can be repeated.
  /// @param guid the execution's guid; with an empty one nothing is sent.
  /// @throws what TS raises; then the execution keeps its status.
  virtual void UpdateActivityExecution(const std::string& guid) = 0;

  /// Slot 4. Starts a pending event, in memory only. A pending event of that name, and its parameters, are dropped.
  /// Pending events stay until they are created anew or the next session begins, whether or not they were saved.
  /// @param name the event's name; the other operations find the event by it, byte for byte.
  virtual void CreateInstrumentEvent(const std::string& name) = 0;

  /// Slot 5. Saves a pending event with every parameter added so far. It stays pending and can grow and be saved again.
  /// @param node name of the pending event; for one that was never created an event without a name is saved.
  /// @param activityTsidGuid guid of the execution to attach it to; empty saves it unattached.
  /// @throws what TS raises, for a guid that it does not know among other things; then nothing was saved.
  virtual void SaveInstrumentEvent(const std::string& node, const std::string& activityTsidGuid) = 0;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    VELORA_IN_SLOT_ORDER(
      /// Slot 6. Adds a boolean parameter at the end of a pending event.
      /// @param node name of the pending event; without one, an event with an empty name begins here.
      /// @param parameter the parameter's name; the same name may be used more than once.
      /// @param value the value.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               bool value) = 0;,
      /// Slot 7. Adds a double parameter; otherwise as slot 6. The value is kept exactly; its log line shows six digits.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               double value) = 0;),
    VELORA_IN_SLOT_ORDER(
      /// Slot 8. Adds a 32-bit signed integer parameter; otherwise as slot 6.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               std::int32_t value) = 0;,
      /// Slot 9. Adds a text parameter; otherwise as slot 6.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               const std::string& value) = 0;))
  // clang-format on

  /// The same for a text that ends with a zero byte, a string literal for example, which a compiler would otherwise
  /// take for a boolean. It stands in this header alone and has no slot.
  void AddInstrumentEventParameter(const std::string& node, const std::string& parameter, const char* value) {
    AddInstrumentEventParameter(node, parameter, std::string(value));
  }
};

}  // namespace Quor::Velora::Infra::TsLogging
