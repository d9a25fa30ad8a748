#pragma once

#include <TSAL/Error.h>
#include <TSAL/Types.h>

#include <map>
#include <string>

// The operations of TS. All of them can be called from several threads at once. Every failure is a TsError or
// std::bad_alloc. An operation that returns has stored its record durably; an operation that raises has stored nothing.
// There is one exception: if the disk refuses to sync a record and all later ones, the record of an operation that
// raised may exist later, complete.
//
// A path on Windows is UTF-8 or, if it is none, in the code page of the process.
//
// Where an operation takes a session, SessionHandle::Empty means the session that was begun last. If there is no
// session, the operation raises.

namespace Quor::TolvaServices::Types {

/// The TS service and its sessions.
class TSAL_API TSInstance {
 public:
  /// Whether the TS client service is installed on this computer. The local TS says yes unless the environment variable
  /// TSAL_SERVICE is "absent".
  static bool IsTsServicePresent();

  /// Whether the TS server answers now. The local TS opens the database that "TSAL.config" names, and makes it if it
  /// does not exist. The answer is no if the database cannot be opened or reached.
  /// @throws TsError if "TSAL.config" has an error, or the local TS cannot record in this database.
  static bool IsConnectable();

  /// Sets the folder of "TSAL.config". The file is looked for by each IsConnectable and each BeginSession, not here.
  /// @param path the folder; empty means the directory that is current when the file is looked for.
  static void SetTsalPath(const std::string& path);

  /// Begins a session with the present settings of "TSAL.config". The session keeps its database, also if the settings
  /// or the current directory change later.
  /// @throws TsError if the settings have an error or the database cannot be opened; the previous session then stays.
  static SessionHandle BeginSession();

  /// Begins a session as BeginSession() does, and stores three texts of the host with it, unchanged.
  static SessionHandle BeginSession(const std::string& text1, const std::string& text2, const std::string& text3);
};

}  // namespace Quor::TolvaServices::Types

namespace Quor::TolvaServices::Methods {

/// Activities and their executions.
class TSAL_API ActivityMethods {
 public:
  /// Registers the activities that a file describes. A definition that is registered already keeps its identity.
  /// @return every activity version in the file, by its name.
  /// @param activitiesFilePath an XML file of at most 64 MiB, in UTF-8: elements Activity (Name, Description) with
  ///        elements ActivityVersion (Name, Version, Description) in a root element Activities.
  /// @throws TsError if the file cannot be used, with file and line; nothing is registered then.
  static std::map<std::string, Types::ActivityVersion> RegisterAndGetActivityVersions(
      const std::string& activitiesFilePath, const Types::SessionHandle& session);

  /// Stores an execution. A new execution (Id unset) gets its identity, and its link to Parent if that is set. For a
  /// known execution, a status with another code or time than the newest is added to its history; everything else
  /// stays as it was first saved.
  /// @param execution its Id is set on return.
  /// @throws TsError if TS does not know the Id or Parent, or if a known execution has another version, node,
  ///         description, kind or (if it is set) parent than the stored one.
  static void SaveActivityExecution(Types::ActivityExecution& execution, const Types::SessionHandle& session);

  /// The stored execution with its newest status. Its Parent is not set, because the record does not own a parent.
  /// @param id the identity of the execution.
  /// @param flag,configurationId without effect in the local TS.
  /// @throws TsError if the identity is not a guid, or no execution has it.
  static Types::ActivityExecution GetActivityExecution(const Types::Tsid& id, bool flag,
                                                       const Types::Tsid* configurationId);
};

/// Instrument events.
class TSAL_API LoggingMethods {
 public:
  /// Stores an event with all its parameters.
  /// @param configurationId the instrument configuration in force; can be unset.
  /// @param activityExecutionId the execution to which the event belongs; can be null.
  /// @param flag without effect in the local TS.
  /// @throws TsError if TS does not know one of these identities.
  static void SaveEvent(const Types::InstrumentEvent& event, const Types::Tsid& configurationId,
                        const Types::Tsid* activityExecutionId, bool flag, const Types::SessionHandle& session);
};

/// The instrument that is recorded.
class TSAL_API SystemMethods {
 public:
  /// Stores the instrument configuration in the session that was begun last: nine texts, unchanged and in this order.
  /// @return the result, whose ConfigurationId identifies the stored configuration.
  static Types::InstrumentEventConfigResult SaveInstrumentConfigWithResult(
      const std::string& configurationText, const std::string& text2, const std::string& vendorName,
      const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
      const std::string& modelName, const std::string& text8, const std::string& text9);
};

}  // namespace Quor::TolvaServices::Methods

namespace Quor::TolvaServices::Utils {

/// Reading files as TSAL reads them.
class TSAL_API TypeUtils {
 public:
  /// The whole content of a regular file of at most 64 MiB, byte for byte.
  /// @throws TsError if the file cannot be read, with its name.
  static std::string ReadAllTextFromFile(const std::string& path);
};

}  // namespace Quor::TolvaServices::Utils
