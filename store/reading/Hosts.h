#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Velora::Store {

class Reader;
struct Execution;
struct Run;

/// What can be said of an execution or of a run.
enum class RunState {
  Finished,  ///< Its newest status is not 4.
  Running,   ///< It did not finish, and its host lives. That host can be idle, so say also how old its last record is.
  Stopped,   ///< It did not finish, and its host has ended.
  NotKnown,  ///< It did not finish, and nobody can say whether its host lives.
};

/// "finished", "running", "stopped" or "unknown", for other programs.
const char* NameOf(RunState state);

struct KnownState {
  RunState state = RunState::Finished;
  std::string why =
      "";  ///< Why it is not known, for a person: "its host has an earlier version, or could take no lock".
};

/// An execution that did not finish.
struct UnfinishedExecution {
  long long key = 0;
  long long root = 0;
  long long session = 0;  ///< The session that set its newest status.
  KnownState known;
};

/// The executions of a store that did not finish, in the order of their keys, without what is known of their hosts. If
/// the store does not note them, as those of earlier versions of the schema, there are none.
std::vector<UnfinishedExecution> UnfinishedIn(const Reader& store);

/// Whether the hosts of sessions live, as their locks say at this moment. A host that has ended by now can have
/// recorded more than the state has that was read before.
std::map<long long, KnownState> StatesOf(const Reader& store, const std::set<long long>& sessions);

/// Which executions of a store did not finish, and whether their hosts live. The host of a session is the process that
/// began it; it holds a lock as long as it lives (SessionLocks.h). The locks are asked for at the first question, all
/// at once, which does not disturb the hosts. What has stopped recorded nothing after the state that the reader has.
class Hosts {
 public:
  explicit Hosts(const Reader& store);
  Hosts(const Hosts&) = delete;
  Hosts& operator=(const Hosts&) = delete;

  KnownState Of(const Execution& execution);
  /// A run is Running if any of its executions is. It is Stopped if all that did not finish have stopped.
  KnownState Of(const Run& run);
  /// The executions of a run that did not finish, in the order of their keys. If the store does not note them, as those
  /// of earlier versions of the schema, there are none here.
  std::vector<UnfinishedExecution> UnfinishedOf(const Run& run);

 private:
  void Look();
  void Confirm(const std::vector<long long>& executions);

  const Reader& store;
  bool looked = false;
  bool confirmed = false;
  bool notes = false;                                   // whether the store notes what did not finish
  std::map<long long, UnfinishedExecution> unfinished;  // by their keys
  std::map<long long, std::vector<long long>> ofRuns;   // their keys, by those of the roots
};

}  // namespace Velora::Store
