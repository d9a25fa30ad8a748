#pragma once

#include <VeloraTsLogging/Export.h>
#include <VeloraTsLogging/ITolvaServicesClass.h>
#include <VeloraTsLogging/ITsLogging.h>

#include <memory>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// A native host's way in: creates the logging object. It carries no state, so any two factories are interchangeable.
///
/// Objects cross this boundary as std::shared_ptr and texts as std::string: host and library must be built with the
/// same family of compiler and standard library.
class IFactory {
 public:
  IFactory() = default;
  IFactory(const IFactory&) = default;
  IFactory(IFactory&&) = default;
  ~IFactory() = default;

  /// Does nothing but return the target. Exported, so that a host's compiler need not make its own.
  VELORA_TS_LOGGING_API IFactory& operator=(const IFactory& other) noexcept;
  VELORA_TS_LOGGING_API IFactory& operator=(IFactory&& other) noexcept;

  /// Brings TS up and returns the logging object of the process.
  ///
  /// Every call repeats the whole bring-up: is TS there, where do "TSAL.config" and the activities file lie (both in
  /// the current directory, else both in the folder of the library file), a new TS session, the registration of the
  /// activities, the instrument configuration. Pending events are forgotten when the session begins. The object is
  /// made by the first call only, or is the one that SetFactory installed.
  /// @param instrumentConfigFile name of the instrument configuration file, whose whole text is recorded; read where
  ///        the other two files were found.
  /// @param activitiesFile name of the activities file.
  /// @return the logging object; also when TS cannot be used, and its operations then record nothing. Empty only when a
  ///        host's gateway takes the new object out of its slot again while the object is checked.
  /// @throws what TS, the file system or the instrument raises during bring-up. What was done before stays done, and
  ///         a later call starts afresh. A missing or unreachable TS is no failure.
  /// Not to be called while another thread uses the logging object.
  VELORA_TS_LOGGING_API static std::shared_ptr<ITsLogging> CreateTsLogging(const std::string& instrumentConfigFile,
                                                                           const std::string& activitiesFile);

  /// The same with the activities file "activities.xml".
  VELORA_TS_LOGGING_API static std::shared_ptr<ITsLogging> CreateTsLogging(const std::string& instrumentConfigFile);
};

/// The factory that is alive, or a new one when nobody holds one. The library keeps no factory alive: the caller owns
/// what it gets. The slot behind it has no lock: not to be called while another thread calls SetFactory.
[[nodiscard]] VELORA_TS_LOGGING_API std::shared_ptr<IFactory> GetFactory();

/// Puts a host's logging object in the place of the component's; CreateTsLogging then returns it, after the usual
/// bring-up. The object replaced is released before this returns; its destructor already finds the new one.
/// @param factory what GetFactory returns from now on, as long as somebody holds it; may be empty.
/// @param logging the object, shared with the library until it is replaced or the library unloaded; an empty one lets
///        the next CreateTsLogging make the component's own afresh.
/// @throws std::system_error when the object's lock cannot be taken; then nothing has changed.
///
/// When the library is unloaded, it releases the factory's slot, the logging object and the gateway, in this order and
/// each once. A destructor that runs then may call everything here; it finds its own slot empty. What it puts into a
/// slot that was released already, an object that CreateTsLogging makes included, stays there and is never released,
/// unless a later destructor takes it out.
VELORA_TS_LOGGING_API void SetFactory(std::shared_ptr<IFactory> factory, std::shared_ptr<ITsLogging> logging);

/// Puts a host's gateway in the place of the component's: from then on every call to TS goes through it.
/// A call that is inside the old gateway completes there; the old one is released when nobody uses it any more.
/// @param factory as above.
/// @param gateway the gateway, shared with the library until it is replaced or the library unloaded; an empty one lets
///        the next call to TS make the component's own afresh, with nothing remembered.
/// @throws std::system_error when a lock cannot be taken; then nothing has changed.
VELORA_TS_LOGGING_API void SetFactory(std::shared_ptr<IFactory> factory, std::shared_ptr<ITolvaServicesClass> gateway);

}  // namespace Quor::Velora::Infra::TsLogging
