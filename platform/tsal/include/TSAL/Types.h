#pragma once

#include <TSAL/Export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

// The TS records. They are values: their holder owns them, and TSAL keeps no reference to them. A field that is marked
// as TSAL's own is copied with the record; a host neither sets nor reads it.

namespace Quor::TolvaServices::Types {

/// The identity of something that TS stores: a guid as text, or unset.
class Tsid {
 public:
  /// An identity that is unset: its text is empty.
  Tsid() = default;
  /// @param guid the guid as text. The constructor does not check it; each operation refuses a text that is not a guid.
  explicit Tsid(std::string guid) : guid_(std::move(guid)) {}

  /// The text of the guid; empty if the identity is unset.
  std::string GetGuid() const { return guid_; }

  friend bool operator==(const Tsid& a, const Tsid& b) { return a.guid_ == b.guid_; }
  friend bool operator!=(const Tsid& a, const Tsid& b) { return !(a == b); }

 private:
  std::string guid_;
};

/// A time stamp: a point in time with microseconds. A default-constructed one means that no time is stated.
class DateTimeOffset {
 public:
  /// No time is stated: a record is then stored with the time at which it is saved. Differs from every Now().
  DateTimeOffset() = default;

  /// The current time of the system's clock.
  TSAL_API static DateTimeOffset Now();

  /// The time stamp of a point in time.
  /// @param microseconds since 1970-01-01T00:00:00 UTC, without leap seconds.
  static DateTimeOffset FromMicroseconds(std::int64_t microseconds) {
    DateTimeOffset time;
    time.microseconds_ = microseconds;
    return time;
  }

  /// Whether a time is stated.
  bool IsStated() const { return microseconds_ != notStated; }
  /// Microseconds since 1970-01-01T00:00:00 UTC. Meaningless if no time is stated.
  std::int64_t Microseconds() const { return microseconds_; }

  friend bool operator==(const DateTimeOffset& a, const DateTimeOffset& b) {
    return a.microseconds_ == b.microseconds_;
  }
  friend bool operator!=(const DateTimeOffset& a, const DateTimeOffset& b) { return !(a == b); }
  friend bool operator<(const DateTimeOffset& a, const DateTimeOffset& b) { return a.microseconds_ < b.microseconds_; }

 private:
  static constexpr std::int64_t notStated = INT64_MIN;
  std::int64_t microseconds_ = notStated;
};

/// Refers to a TS session. The session stays open, also if nobody holds a handle to it.
class SessionHandle {
 public:
  /// Means the session that was begun last, in every operation that takes a session.
  TSAL_API static const SessionHandle Empty;

  SessionHandle() = default;
  /// A handle to a session.
  /// @param session the object by which TSAL identifies the session.
  explicit SessionHandle(std::shared_ptr<void> session) : session_(std::move(session)) {}

  /// The object by which TSAL identifies the session; null in a default-constructed handle.
  const std::shared_ptr<void>& Session() const { return session_; }

 private:
  std::shared_ptr<void> session_;
};

// The form in which each type of event parameter is sent to the server.
struct ns1__InstrumentParameterString {
  std::string Name;
  std::string Value;
};
struct ns1__InstrumentParameterInt {
  std::string Name;
  std::int32_t Value;
};
struct ns1__InstrumentParameterDouble {
  std::string Name;
  double Value;
};
struct ns1__InstrumentParameterBoolean {
  std::string Name;
  bool Value;
};
using ns1__InstrumentParameter = std::variant<ns1__InstrumentParameterString, ns1__InstrumentParameterInt,
                                              ns1__InstrumentParameterDouble, ns1__InstrumentParameterBoolean>;

/// A typed parameter of an instrument event. If a parameter is moved, its name is copied and its value is moved.
class TSAL_API InstrumentParameterBase {
 public:
  virtual ~InstrumentParameterBase();
  /// The parameter in the form in which it is sent to the server. Only TSAL calls it.
  virtual ns1__InstrumentParameter ToGsoap() const = 0;

  std::string Name;

 protected:
  explicit InstrumentParameterBase(std::string name);
  InstrumentParameterBase(const InstrumentParameterBase&) = default;
  InstrumentParameterBase& operator=(const InstrumentParameterBase&) = default;
};

/// A parameter whose value is a text.
class TSAL_API InstrumentParameterString final : public InstrumentParameterBase {
 public:
  InstrumentParameterString(std::string name, std::string value);
  ns1__InstrumentParameter ToGsoap() const override;

  std::string Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

/// A parameter whose value is a whole number.
class TSAL_API InstrumentParameterInt final : public InstrumentParameterBase {
 public:
  InstrumentParameterInt(std::string name, std::int32_t value);
  ns1__InstrumentParameter ToGsoap() const override;

  std::int32_t Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

/// A parameter whose value is a double.
class TSAL_API InstrumentParameterDouble final : public InstrumentParameterBase {
 public:
  InstrumentParameterDouble(std::string name, double value);
  ns1__InstrumentParameter ToGsoap() const override;

  double Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

/// A parameter whose value is true or false.
class TSAL_API InstrumentParameterBoolean final : public InstrumentParameterBase {
 public:
  InstrumentParameterBoolean(std::string name, bool value);
  ns1__InstrumentParameter ToGsoap() const override;

  bool Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

/// An event at the instrument. A copy shares its parameters with the original.
struct InstrumentEvent {
  std::string Name;
  DateTimeOffset TimeStamp;  ///< When it happened. Not stated: when it was saved.
  std::vector<std::shared_ptr<InstrumentParameterBase>> Parameters;  ///< In the order in which they were added.
  std::shared_ptr<void> Own1;                                        ///< TSAL's own.
  std::shared_ptr<void> Own2;                                        ///< TSAL's own.
};

/// The common base of activities, activity versions and activity executions.
class TSAL_API Element {
 public:
  Element() = default;
  Element(const Element&) = default;
  Element(Element&&) = default;
  Element& operator=(const Element&) = default;
  Element& operator=(Element&&) = default;
  virtual ~Element();

  Tsid Id;
  std::string Description;
  std::string Name;  ///< TSAL's own.
};

/// A registered activity.
class TSAL_API Activity : public Element {
 public:
  Activity() = default;
  Activity(const Activity&) = default;
  Activity(Activity&&) = default;
  Activity& operator=(const Activity&) = default;
  Activity& operator=(Activity&&) = default;
  ~Activity() override;
};

/// The form in which an activity version is sent to the server.
struct ns1__ActivityVersion {
  std::string Guid, Name, Version, Description;
  std::string ActivityGuid, ActivityName, ActivityDescription;
};

/// A registered version of an activity. A default-constructed one has an unset Id and means no version.
class TSAL_API ActivityVersion : public Element {
 public:
  ActivityVersion() = default;
  ActivityVersion(const ActivityVersion&) = default;
  ActivityVersion(ActivityVersion&&) = default;
  ActivityVersion& operator=(const ActivityVersion&) = default;
  ActivityVersion& operator=(ActivityVersion&&) = default;
  ~ActivityVersion() override;
  /// The version in the form in which it is sent to the server. Only TSAL calls it.
  virtual ns1__ActivityVersion ToGsoap() const;

  std::string Version;       ///< TSAL's own.
  Types::Activity Activity;  ///< TSAL's own: the activity of this version.
};

namespace Enums {
/// The status of an execution. TS has more values than these two, and stores any value.
enum class ActivityExecStatus : std::int32_t {
  Running = 4,
  Done = 14,
};
}  // namespace Enums

/// A status of an execution, and the time from which the execution has it.
struct ActivityExecutionStatus {
  ActivityExecutionStatus() = default;
  /// A status from a given time on.
  ActivityExecutionStatus(Enums::ActivityExecStatus code, const DateTimeOffset& time) : Code(code), Time(time) {}

  Enums::ActivityExecStatus Code{};
  DateTimeOffset Time;
};

/// One execution of an activity.
class TSAL_API ActivityExecution : public Element {
 public:
  ActivityExecution() = default;
  ActivityExecution(const ActivityExecution&) = default;
  ActivityExecution(ActivityExecution&&) = default;
  ActivityExecution& operator=(const ActivityExecution&) = default;
  ActivityExecution& operator=(ActivityExecution&&) = default;
  ~ActivityExecution() override;

  std::string Node;  ///< Where it runs, in the words of the host.
  ActivityExecutionStatus Status;
  Types::ActivityVersion ActivityVersion;  ///< The activity version that runs.
  std::int32_t Kind = 0;
  const ActivityExecution* Parent = nullptr;  ///< Not owned; null if it is not stated.
};

/// The answer of TS to a stored instrument configuration.
struct InstrumentEventConfigResult {
  std::string Text;                 ///< TSAL's own.
  Tsid ConfigurationId;             ///< The identity of the stored configuration, to which events refer.
  Tsid SessionId;                   ///< TSAL's own: the session of the configuration.
  DateTimeOffset Time;              ///< TSAL's own: when it was stored.
  std::shared_ptr<void> Reference;  ///< TSAL's own.
};

}  // namespace Quor::TolvaServices::Types
