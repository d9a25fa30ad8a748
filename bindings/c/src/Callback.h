#pragma once

#include "Boundary.h"

#include <velora_ts.h>

#include <exception>
#include <string>

namespace Velora::CInterface {

/// One call of a callback on this thread. The reason that an outer callback has given is kept aside meanwhile, and what
/// is not used of this one is forgotten: no reason is ever taken for that of another failure.
class CallbackScope {
 public:
  /// @throws Failure if the process ends: the code of the host can be gone.
  explicit CallbackScope(const char* callback);
  CallbackScope(const CallbackScope&) = delete;
  CallbackScope& operator=(const CallbackScope&) = delete;
  ~CallbackScope();

  /// @throws Failure if the callback failed, with its reason.
  void Check(velora_ts_status returned) const;

 private:
  const char* callback;
  std::string reasonOutside;
  unsigned long errorsBefore;
};

/// Whether the process ends: no callback is called any more, because its code or its language can be gone.
bool CallbacksAreOver() noexcept;
/// Lets no callback be called any more.
void EndCallbacks() noexcept;

/// Lets this library stay loaded until the process ends, because objects with its code go to others.
void StayLoaded();

/// A table of callbacks of the host: a copy, which is released once if it was ever in place.
template <typename Table>
class HostTable {
 public:
  /// @throws Misuse if the host was built with another table. Whether it is complete is for the caller to see.
  explicit HostTable(const Table& given) : table(Checked(given)) {}
  HostTable(const HostTable&) = delete;
  HostTable& operator=(const HostTable&) = delete;
  ~HostTable() {
    if (isReleasable && table.release != nullptr && !CallbacksAreOver()) {
      try {
        table.release(table.context);
      } catch (...) {
        // Nobody waits for an answer.
      }
    }
  }

  /// @throws Misuse if a callback is missing.
  template <typename Callback>
  void Expect(const char* name, Callback Table::*callback) const {
    if (table.*callback == nullptr) {
      throw Misuse(std::string("the callback ") + name + " is missing");
    }
  }

  /// Puts the table into its place. Before, and if `put` raises, the callbacks stay with the host.
  template <typename Put>
  void PutInPlace(const Put& put) {
    StayLoaded();
    isReleasable = true;  // already now: what `put` calls can replace it again
    try {
      put();
    } catch (...) {
      isReleasable = false;
      throw;
    }
  }

  /// Calls a callback with the context.
  /// @throws Failure if it fails, or lets out an exception that tells its reason.
  template <typename... Parameters, typename... Arguments>
  void Call(const char* name, velora_ts_status (VELORA_TS_CALL* Table::*callback)(void*, Parameters...),
            Arguments... arguments) const {
    const CallbackScope scope(name);
    scope.Check(Returned([&] { return (table.*callback)(table.context, arguments...); }));
  }

 private:
  static const Table& Checked(const Table& given) {
    if (given.size != sizeof(Table)) {
      throw Misuse("size is " + std::to_string(given.size) + ", expected " + std::to_string(sizeof(Table)));
    }
    return given;
  }

  template <typename Run>
  static velora_ts_status Returned(const Run& run) {
    try {
      return run();
    } catch (const std::exception& reason) {
      throw Failure(VELORA_TS_RAISED, reason.what());
    }
  }

  const Table table;
  bool isReleasable = false;
};

}  // namespace Velora::CInterface
