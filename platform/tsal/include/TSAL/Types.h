#pragma once

#include <TSAL/Export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

// The TS records. They are values: whoever holds one owns it, and TSAL keeps no reference to any of them. A field said
// to be TSAL's own is carried along by a host that copies the record, and neither set nor read by it.

namespace Quor::TolvaServices::Types {

/// The identity of something that TS stores: a guid as text, or unset.
class Tsid {
 public:
  /// Unset: the empty text.
  Tsid() = default;
  /// @param guid the guid as text. It is looked at by the operation that it is given to, which refuses one that is
  /// none.
  explicit Tsid(std::string guid) : guid_(std::move(guid)) {}

  /// The guid's text, empty when unset.
  std::string GetGuid() const { return guid_; }

  friend bool operator==(const Tsid& a, const Tsid& b) { return a.guid_ == b.guid_; }
  friend bool operator!=(const Tsid& a, const Tsid& b) { return !(a == b); }

 private:
  std::string guid_;
};

/// A time stamp: a point in time with microseconds, or, when default-constructed, no time stated.
class DateTimeOffset {
 public:
  /// No time stated: what is stored with it carries the time at which it was stored. Differs from every Now().
  DateTimeOffset() = default;

  /// The current time of the system's clock.
  TSAL_API static DateTimeOffset Now();

  /// @param microseconds since 1970-01-01T00:00:00 UTC, leap seconds not counted.
  static DateTimeOffset FromMicroseconds(std::int64_t microseconds) {
    DateTimeOffset time;
    time.microseconds_ = microseconds;
    return time;
  }

  bool IsStated() const { return microseconds_ != notStated; }
  /// Microseconds since 1970-01-01T00:00:00 UTC; without meaning when no time is stated.
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

/// A TS session. The session stays open whether or not a handle to it is held.
class SessionHandle {
 public:
  /// Stands for the session begun last, wherever an operation asks for a session.
  TSAL_API static const SessionHandle Empty;

  SessionHandle() = default;
  /// @param session what TSAL knows the session by.
  explicit SessionHandle(std::shared_ptr<void> session) : session_(std::move(session)) {}

  const std::shared_ptr<void>& Session() const { return session_; }

 private:
  std::shared_ptr<void> session_;
};

// How each kind of event parameter travels to the server.
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

/// One typed parameter of an instrument event. Moving one copies its name and moves its value.
class TSAL_API InstrumentParameterBase {
 public:
  virtual ~InstrumentParameterBase();
  /// The parameter as it travels to the server. Called by TSAL alone.
  virtual ns1__InstrumentParameter ToGsoap() const = 0;

  std::string Name;

 protected:
  explicit InstrumentParameterBase(std::string name);
  InstrumentParameterBase(const InstrumentParameterBase&) = default;
  InstrumentParameterBase& operator=(const InstrumentParameterBase&) = default;
};

class TSAL_API InstrumentParameterString final : public InstrumentParameterBase {
 public:
  InstrumentParameterString(std::string name, std::string value);
  ns1__InstrumentParameter ToGsoap() const override;

  std::string Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

class TSAL_API InstrumentParameterInt final : public InstrumentParameterBase {
 public:
  InstrumentParameterInt(std::string name, std::int32_t value);
  ns1__InstrumentParameter ToGsoap() const override;

  std::int32_t Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

class TSAL_API InstrumentParameterDouble final : public InstrumentParameterBase {
 public:
  InstrumentParameterDouble(std::string name, double value);
  ns1__InstrumentParameter ToGsoap() const override;

  double Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

class TSAL_API InstrumentParameterBoolean final : public InstrumentParameterBase {
 public:
  InstrumentParameterBoolean(std::string name, bool value);
  ns1__InstrumentParameter ToGsoap() const override;

  bool Value;
  std::shared_ptr<void> Own;  ///< TSAL's own.
};

/// Something that happened at the instrument. A copy shares its parameters with the record that it was copied from.
struct InstrumentEvent {
  std::string Name;
  DateTimeOffset TimeStamp;  ///< When it happened; not stated means when it was saved.
  std::vector<std::shared_ptr<InstrumentParameterBase>> Parameters;  ///< In the order in which they were added.
  std::shared_ptr<void> Own1;                                        ///< TSAL's own.
  std::shared_ptr<void> Own2;                                        ///< TSAL's own.
};

/// What activities, their versions and their executions have in common.
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

/// An activity that TS knows.
class TSAL_API Activity : public Element {
 public:
  Activity() = default;
  Activity(const Activity&) = default;
  Activity(Activity&&) = default;
  Activity& operator=(const Activity&) = default;
  Activity& operator=(Activity&&) = default;
  ~Activity() override;
};

/// How an activity version travels to the server.
struct ns1__ActivityVersion {
  std::string Guid, Name, Version, Description;
  std::string ActivityGuid, ActivityName, ActivityDescription;
};

/// One registered version of an activity. A default one has an unset Id and stands for no version.
class TSAL_API ActivityVersion : public Element {
 public:
  ActivityVersion() = default;
  ActivityVersion(const ActivityVersion&) = default;
  ActivityVersion(ActivityVersion&&) = default;
  ActivityVersion& operator=(const ActivityVersion&) = default;
  ActivityVersion& operator=(ActivityVersion&&) = default;
  ~ActivityVersion() override;
  /// The version as it travels to the server. Called by TSAL alone.
  virtual ns1__ActivityVersion ToGsoap() const;

  std::string Version;       ///< TSAL's own.
  Types::Activity Activity;  ///< TSAL's own: what this is a version of.
};

namespace Enums {
/// How far an execution is. TS has more values than are named here and stores any.
enum class ActivityExecStatus : std::int32_t {
  Running = 4,
  Done = 14,
};
}  // namespace Enums

/// A status and since when the execution has it.
struct ActivityExecutionStatus {
  ActivityExecutionStatus() = default;
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

  std::string Node;  ///< Where it runs, in the host's own terms.
  ActivityExecutionStatus Status;
  Types::ActivityVersion ActivityVersion;  ///< The version that it runs.
  std::int32_t Kind = 0;
  const ActivityExecution* Parent = nullptr;  ///< Not owned; null when not stated.
};

/// What TS answers when an instrument configuration was stored.
struct InstrumentEventConfigResult {
  std::string Text;                 ///< TSAL's own.
  Tsid ConfigurationId;             ///< The stored configuration, as events refer to it.
  Tsid SessionId;                   ///< TSAL's own: the session that it was stored in.
  DateTimeOffset Time;              ///< TSAL's own: when it was stored.
  std::shared_ptr<void> Reference;  ///< TSAL's own.
};

}  // namespace Quor::TolvaServices::Types
