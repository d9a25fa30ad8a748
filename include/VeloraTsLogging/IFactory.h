#pragma once

#include <VeloraTsLogging/Export.h>
#include <VeloraTsLogging/ITolvaServicesClass.h>
#include <VeloraTsLogging/ITsLogging.h>

#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Creates the logging object for a native host. A factory has no state, so all factories behave the same.
///
/// Objects are passed as std::shared_ptr and texts as std::string. Host and library must therefore be built with the
/// same family of compiler and standard library.
class IFactory {
 public:
  IFactory() = default;
  IFactory(const IFactory&) = default;
  IFactory(IFactory&&) = default;
  ~IFactory() = default;

  /// Returns the target and changes nothing. The library exports both operators, so a host needs no copy of them.
  VELORA_TS_LOGGING_API IFactory& operator=(const IFactory& other) noexcept;
  VELORA_TS_LOGGING_API IFactory& operator=(IFactory&& other) noexcept;

  /// Starts a session with TS and returns the logging object of the process.
  ///
  /// Every call repeats the whole bring-up. It checks whether TS is available, searches "TSAL.config" and the
  /// activities file (both in the current directory, otherwise both in the folder of the library file), begins a new TS
  /// session, registers the activities and saves the instrument configuration. The start of the session removes all
  /// pending events. Only the first call makes the object. After SetFactory the object is the one that SetFactory
  /// installed.
  /// @param instrumentConfigFile name of the instrument configuration file. The file is read in the folder where the
  ///        other two files were found, and its whole text is recorded.
  /// @param activitiesFile name of the activities file.
  /// @return the logging object, also when TS cannot be used; its operations then record nothing. Empty only when a
  ///        host's gateway removes the new object from its slot while the object is checked.
  /// @throws what TS, the file system or the instrument raises during bring-up. The steps before the failure are not
  ///         undone. A later call repeats all steps. A missing or unreachable TS is not a failure.
  /// Do not call it while another thread uses the logging object.
  VELORA_TS_LOGGING_API static std::shared_ptr<ITsLogging> CreateTsLogging(const std::string& instrumentConfigFile,
                                                                           const std::string& activitiesFile);

  /// Does the same with the activities file "activities.xml".
  VELORA_TS_LOGGING_API static std::shared_ptr<ITsLogging> CreateTsLogging(const std::string& instrumentConfigFile);
};

/// Returns the current factory, or a new one when nobody holds a factory. The caller owns the factory; the library does
/// not keep it alive. The factory's slot has no lock: do not call this while another thread calls SetFactory.
[[nodiscard]] VELORA_TS_LOGGING_API std::shared_ptr<IFactory> GetFactory();

/// Replaces the logging object by a host's own. CreateTsLogging then returns the new object, after the usual bring-up.
/// The old object is released before this function returns. Its destructor already finds the new object in the slot.
/// @param factory the factory that GetFactory returns from now on, as long as somebody holds it; may be empty.
/// @param logging the new object. The library shares it until it is replaced or the library is unloaded. If it is
/// empty,
///        the next CreateTsLogging makes a new object of the component.
/// @throws std::system_error when the lock of the object cannot be taken. Nothing has changed then.
///
/// When the library is unloaded, it releases the factory's slot, the logging object and the gateway, in this order and
/// each once. A destructor that runs then may call all functions of this header and finds its own slot empty. An object
/// that it puts into a slot that is released already is never released, unless a later destructor removes it from the
/// slot. This is also true of an object that CreateTsLogging makes.
VELORA_TS_LOGGING_API void SetFactory(std::shared_ptr<IFactory> factory, std::shared_ptr<ITsLogging> logging);

/// Replaces the gateway by a host's own. From then on every call to TS goes through the new gateway.
/// A call that is running in the old gateway completes there. The old gateway is released when nobody uses it any more.
/// @param factory the factory that GetFactory returns from now on, as long as somebody holds it; may be empty.
/// @param gateway the new gateway. The library shares it until it is replaced or the library is unloaded. If it is
/// empty,
///        the next call to TS makes a new gateway of the component, which has no cached path or activities.
/// @throws std::system_error when a lock cannot be taken. Nothing has changed then.
VELORA_TS_LOGGING_API void SetFactory(std::shared_ptr<IFactory> factory, std::shared_ptr<ITolvaServicesClass> gateway);

}  // namespace Quor::Velora::Infra::TsLogging
