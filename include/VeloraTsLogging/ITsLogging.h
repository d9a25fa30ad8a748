#pragma once

#include <VeloraTsLogging/Export.h>

#include <cstdint>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Records what an automated run does: instrument events with typed parameters, and executions of activities.
///
/// The component implements this interface and a host calls it. A host obtains the object from
/// IFactory::CreateTsLogging, or installs its own implementation with SetFactory. The usual order of calls:
/// CreateActivityExecution; for each event CreateInstrumentEvent, AddInstrumentEventParameter for each value, and
/// SaveInstrumentEvent with the guid of the execution; at the end UpdateActivityExecution.
///
/// The component checks whether TS can be used when it creates the object, and again in each CreateTsLogging and each
/// SetParentActivityExec. While TS cannot be used, every operation only writes its trace lines and records nothing.
/// The creation of an execution also writes an error line.
///
/// Each operation runs on the thread of the caller. An exception of TS passes to the caller unchanged. The operations
/// use tables of the process without a lock: do not run two operations at the same time, and none during
/// CreateTsLogging. Texts are bytes, zero bytes included, and are passed on unchanged.
///
/// The order of the slots is final. VELORA_IN_SLOT_ORDER gives overloads the same order with every compiler.
class ITsLogging {
 public:
  /// Slot 0.
  virtual ~ITsLogging() = default;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 1. Creates an execution of a registered activity version as a child of another execution.
    /// @param parentActivityGuid guid of the parent, as a creation returned it. If it is empty, nothing is created.
    /// @param regActivityVersionName name of the activity version in the activities file. If the name is not
    ///        registered, the execution has an empty version.
    /// @param node where the execution runs, in the terms of the host.
    /// @param description free text. If the process-wide parent has an empty description, its children are stored
    ///        without a parent.
    /// @return the guid of the new execution. Only this guid can mark the execution as done. Empty when TS cannot be
    ///         used, is not present, or no parent was given.
    /// @throws what TS raises, for example for an unknown parent. Nothing was created then.
    [[nodiscard]] virtual std::string CreateActivityExecution(const std::string& parentActivityGuid,
                                                              const std::string& regActivityVersionName,
                                                              const std::string& node,
                                                              const std::string& description) = 0;,
    /// Slot 2. Creates an execution as a child of the process-wide parent, or without a parent when none was set.
    /// SetParentActivityExec sets the process-wide parent; the operation reads it once, at its start. The parameters,
    /// the result and the exceptions are those of slot 1.
    [[nodiscard]] virtual std::string CreateActivityExecution(const std::string& regActivityVersionName,
                                                              const std::string& node,
                                                              const std::string& description) = 0;)
  // clang-format on

  /// Slot 3. Marks an execution as done: saves it with status 14 and the current time. Can be repeated.
  /// @param guid guid of the execution. If it is empty, nothing is saved.
  /// @throws what TS raises. The execution keeps its status then.
  virtual void UpdateActivityExecution(const std::string& guid) = 0;

  /// Slot 4. Creates a pending event in memory. It replaces a pending event of the same name and its parameters.
  /// A pending event, saved or not, stays until it is created again or the next session begins.
  /// @param name name of the event. The other operations find the event by this name, compared byte by byte.
  virtual void CreateInstrumentEvent(const std::string& name) = 0;

  /// Slot 5. Saves a pending event with all its parameters. The event stays pending: parameters can be added, and it
  /// can be saved again.
  /// @param node name of the pending event. If there is none, an event without a name is saved.
  /// @param activityTsidGuid guid of the execution that the event belongs to; empty for none.
  /// @throws what TS raises, for example for an unknown guid. Nothing was saved then.
  virtual void SaveInstrumentEvent(const std::string& node, const std::string& activityTsidGuid) = 0;

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    VELORA_IN_SLOT_ORDER(
      /// Slot 6. Adds a boolean parameter at the end of a pending event.
      /// @param node name of the pending event. If there is none, an event without a name is created under this name.
      /// @param parameter name of the parameter. The same name may be used more than once.
      /// @param value value of the parameter.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               bool value) = 0;,
      /// Slot 7. Adds a double parameter like slot 6. The value is stored exactly; its log line shows six digits.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               double value) = 0;),
    VELORA_IN_SLOT_ORDER(
      /// Slot 8. Adds a 32-bit signed integer parameter like slot 6.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               std::int32_t value) = 0;,
      /// Slot 9. Adds a text parameter like slot 6.
      virtual void AddInstrumentEventParameter(const std::string& node, const std::string& parameter,
                                               const std::string& value) = 0;))
  // clang-format on

  /// Adds a text parameter from a text that ends with a zero byte, for example a string literal. Without this overload
  /// a compiler would take a literal as a boolean. The overload has no slot.
  void AddInstrumentEventParameter(const std::string& node, const std::string& parameter, const char* value) {
    AddInstrumentEventParameter(node, parameter, std::string(value));
  }
};

}  // namespace Quor::Velora::Infra::TsLogging
