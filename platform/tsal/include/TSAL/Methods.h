#pragma once

#include <TSAL/Error.h>
#include <TSAL/Types.h>

#include <map>
#include <string>

// The operations of TS. All may be called from several threads at once. Every failure is a TsError, or std::bad_alloc;
// an operation that raises has stored nothing, and one that returns has stored durably what it was told. Only when the
// disk refuses to sync a record, and goes on refusing, may one that raised be found there later, whole.
//
// Where an operation takes a session, SessionHandle::Empty means the session begun last; without one it raises.

namespace Quor::TolvaServices::Types {

/// The TS service and its sessions.
class TSAL_API TSInstance {
 public:
  /// Whether the TS client service is installed on this computer. The local TS says yes unless the environment variable
  /// TSAL_SERVICE is "absent".
  static bool IsTsServicePresent();

  /// Whether the TS server answers now. The local TS opens the database that "TSAL.config" names, and makes it when it
  /// is not there yet; it says no when the database cannot be opened or reached.
  /// @throws TsError when "TSAL.config" cannot be used or the database is none that it can record in.
  static bool IsConnectable();

  /// Says where "TSAL.config" lies. It is looked for at each IsConnectable and each BeginSession, not here.
  /// @param path its folder; empty means the current directory as it is when the file is looked for.
  static void SetTsalPath(const std::string& path);

  /// Begins a session with the settings that "TSAL.config" holds now. The session keeps its database whatever becomes
  /// of the settings or of the current directory.
  /// @throws TsError when the settings cannot be used or the database cannot be opened; the session begun before stays.
  static SessionHandle BeginSession();

  /// The same with three texts of the host's, stored with the session as they are.
  static SessionHandle BeginSession(const std::string& text1, const std::string& text2, const std::string& text3);
};

}  // namespace Quor::TolvaServices::Types

namespace Quor::TolvaServices::Methods {

/// Activities and their executions.
class TSAL_API ActivityMethods {
 public:
  /// Registers the activities that a file describes and returns every activity version in it under its name. A
  /// definition that is registered already keeps its identity.
  /// @param activitiesFilePath an XML file of at most 64 MiB, in UTF-8: elements Activity (Name, Description) with
  ///        elements ActivityVersion (Name, Version, Description) in a root element Activities.
  /// @throws TsError naming file and line when the file cannot be used; nothing is registered then.
  static std::map<std::string, Types::ActivityVersion> RegisterAndGetActivityVersions(
      const std::string& activitiesFilePath, const Types::SessionHandle& session);

  /// Stores an execution. A new one (Id unset) gets its identity here, with its link to Parent where that is set. For
  /// a known one, a status that differs in code or time from the newest is added to its history; everything else stays
  /// what it was first saved as.
  /// @param execution its Id is set on return.
  /// @throws TsError for an Id or Parent that nobody knows, and for a known execution whose version, node, description,
  ///         kind or (where it is set) parent is not the stored one.
  static void SaveActivityExecution(Types::ActivityExecution& execution, const Types::SessionHandle& session);

  /// The stored execution with its newest status. Its Parent is not set, since the record does not own one.
  /// @param id the execution's identity.
  /// @param flag,configurationId without effect in the local TS.
  /// @throws TsError for an identity that is no guid or that no execution has.
  static Types::ActivityExecution GetActivityExecution(const Types::Tsid& id, bool flag,
                                                       const Types::Tsid* configurationId);
};

/// Instrument events.
class TSAL_API LoggingMethods {
 public:
  /// Stores an event with all its parameters.
  /// @param configurationId the configuration in force; may be unset.
  /// @param activityExecutionId the execution that the event belongs to; may be null.
  /// @param flag without effect in the local TS.
  /// @throws TsError for an identity that nobody knows.
  static void SaveEvent(const Types::InstrumentEvent& event, const Types::Tsid& configurationId,
                        const Types::Tsid* activityExecutionId, bool flag, const Types::SessionHandle& session);
};

/// The system that is recorded.
class TSAL_API SystemMethods {
 public:
  /// Stores the instrument configuration in the session begun last: nine texts, kept as they are and in this order.
  /// @return ConfigurationId identifies what was stored.
  static Types::InstrumentEventConfigResult SaveInstrumentConfigWithResult(
      const std::string& configurationText, const std::string& text2, const std::string& vendorName,
      const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
      const std::string& modelName, const std::string& text8, const std::string& text9);
};

}  // namespace Quor::TolvaServices::Methods

namespace Quor::TolvaServices::Utils {

class TSAL_API TypeUtils {
 public:
  /// The whole content of a regular file of at most 64 MiB, byte for byte.
  /// @throws TsError naming the file when it cannot be read.
  static std::string ReadAllTextFromFile(const std::string& path);
};

}  // namespace Quor::TolvaServices::Utils
