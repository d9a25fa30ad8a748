#pragma once

#include <VeloraTsLogging/Export.h>

#include <memory>
#include <string>

namespace Quor::Velora::Unmanaged {

/// A managed host's way in: makes everything that is recorded from now on hang under one execution.
///
/// The component implements this interface; a host obtains a configurator from one of the two functions below. It
/// carries no state, so any number may exist at once and they are interchangeable: what it sets is the process's. It
/// needs no CreateTsLogging before it, since it brings TS up by itself.
///
/// The order of the slots is final; the overloads are declared through VELORA_IN_SLOT_ORDER for that reason.
class VELORA_TS_LOGGING_API ITsLoggingConfigurator {
 public:
  ITsLoggingConfigurator();
  /// Slot 0.
  virtual ~ITsLoggingConfigurator();

  // clang-format off
  VELORA_IN_SLOT_ORDER(
    /// Slot 1. Checks whether TS can be used, begins a new TS session, registers the activities, and creates the parent:
    /// an execution of the activity version "AutoFunction", done from its first moment. Executions that are created
    /// without a parent of their own become its children, until the next call. Pending events are forgotten.
    /// @param node the parent's node, in the host's own terms.
    /// @param sessionArg1,sessionArg2,sessionArg3 three texts for TS, passed on with the session; used only when the
    ///        settings lie in the folder of the library file, not when they lie in the current directory.
    /// @param activitiesFile name of the activities file, which is looked for where "TSAL.config" is.
    /// @return the parent's guid; when TS cannot be used, that of the parent set before, or empty.
    /// @throws what TS or the file system raises; then the parent set before stays. With the settings nowhere no
    ///         session begins, and the parent is saved all the same: TS decides whether it takes it.
    /// Not to be called while another thread uses the logging object.
    virtual std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                              const std::string& sessionArg2, const std::string& sessionArg3,
                                              const std::string& activitiesFile) = 0;,
    /// Slot 2. The same with the activities file "activities.xml".
    virtual std::string SetParentActivityExec(const std::string& node, const std::string& sessionArg1,
                                              const std::string& sessionArg2, const std::string& sessionArg3) = 0;)
  // clang-format on

 protected:
  ITsLoggingConfigurator(const ITsLoggingConfigurator&) = default;
  ITsLoggingConfigurator& operator=(const ITsLoggingConfigurator&) = default;
};

/// A new configurator, owned by the caller. May be called from any thread.
[[nodiscard]] VELORA_TS_LOGGING_API std::shared_ptr<ITsLoggingConfigurator> GetTsLoggingConfigurator();

}  // namespace Quor::Velora::Unmanaged

/// The same for a host that finds functions by their bare names.
/// @param slot receives the new configurator. What it held is released afterwards, so a destructor that looks finds the
///        new one; when there is no memory, the slot keeps what it held. Not to be filled from two threads at once.
extern "C" VELORA_TS_LOGGING_API void GetTsLogingConfigurator(
    std::shared_ptr<Quor::Velora::Unmanaged::ITsLoggingConfigurator>& slot);
