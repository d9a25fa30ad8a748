#pragma once

#include <VeloraTsLogging/Export.h>

#include <memory>
#include <string>

namespace Quor::Velora::Unmanaged {

/// Sets the process-wide parent for a managed host: later executions without a parent of their own become its children.
///
/// The component implements this interface. A host obtains a configurator from one of the two functions below. A
/// configurator has no state, so all configurators behave the same; the parent belongs to the process. A call of
/// CreateTsLogging before is not needed, because SetParentActivityExec starts a session itself.
///
/// The order of the slots is final. VELORA_IN_SLOT_ORDER gives overloads the same order with every compiler.
class VELORA_TS_LOGGING_API ITsLoggingConfigurator {
 public:
  ITsLoggingConfigurator();
  /// Slot 0.
  virtual ~ITsLoggingConfigurator();

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 1. Checks whether TS can be used, begins a new TS session, registers the activities, and creates the
    /// parent. The parent is an execution of the activity version "AutoFunction" that is created with status 14 (done).
    /// Until the next call, executions that are created without a parent become its children. All pending events are
    /// removed. If the settings are not found, no session begins, but the parent is saved nevertheless; TS accepts or
    /// refuses it.
    /// @param node node of the parent, in the terms of the host.
    /// @param sessionArg1,sessionArg2,sessionArg3 three texts that TS gets with the session. They are used only when
    ///        the settings are in the folder of the library file, not when they are in the current directory.
    /// @param activitiesFile name of the activities file. It must be in the same folder as "TSAL.config".
    /// @return the guid of the parent. When TS cannot be used, the guid of the parent set before, or empty.
    /// @throws what TS or the file system raises. The parent set before stays then.
    /// Do not call it while another thread uses the logging object.
    virtual std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                              const std::string& sessionArg2, const std::string& sessionArg3,
                                              const std::string& activitiesFile) = 0;,
    /// Slot 2. Does what slot 1 does, with the activities file "activities.xml".
    virtual std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                              const std::string& sessionArg2, const std::string& sessionArg3) = 0;)
  // clang-format on

 protected:
  ITsLoggingConfigurator(const ITsLoggingConfigurator&) = default;
  ITsLoggingConfigurator& operator=(const ITsLoggingConfigurator&) = default;
};

/// Returns a new configurator, which the caller owns. Can be called on any thread.
[[nodiscard]] VELORA_TS_LOGGING_API std::shared_ptr<ITsLoggingConfigurator> GetTsLoggingConfigurator();

}  // namespace Quor::Velora::Unmanaged

/// Returns a new configurator to a host that finds functions by their undecorated names.
/// @param slot receives the new configurator. The old content is released afterwards, so its destructor finds the new
///        configurator in the slot. When there is no memory, the slot keeps its content. Do not fill one slot on two
///        threads at the same time.
extern "C" VELORA_TS_LOGGING_API void GetTsLogingConfigurator(
    std::shared_ptr<Quor::Velora::Unmanaged::ITsLoggingConfigurator>& slot);
