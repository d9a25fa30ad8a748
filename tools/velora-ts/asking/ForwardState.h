#pragma once

#include "store/database/Database.h"
#include "store/forwarding/Marks.h"

#include <optional>
#include <string>

namespace Velora::Ts {

/// What a forwarder says of itself, for those who look at the instrument while the facility cannot be reached. Nothing
/// depends on it: how far forwarding came is in the rows that the facility has. Times are stored ones, or empty.
struct ForwardState {
  std::string facility;      ///< The name of its database, without a password.
  std::string writtenAt;     ///< At least once a minute while a forwarder is at work.
  bool ended = false;        ///< Whether the forwarder ended in good order.
  std::string reachedAt;     ///< When the facility last answered.
  std::string store;         ///< The guid of the store that was forwarded then.
  Store::Marks marks;        ///< How far it was then.
  std::string failingSince;  ///< Empty while forwarding works.
  std::string error;         ///< The last error since then.

  /// Whether a forwarder was at work in the last minutes.
  bool IsAtWork() const;
};

/// The file "ts.db-forward" beside a store "ts.db", one line of JSON.
class ForwardStateFile {
 public:
  /// @param store in a file.
  explicit ForwardStateFile(const Store::Database& store);

  /// Replaces the file as a whole. It gets the permissions of the store, but its owner can write it.
  /// @throws Error when that fails.
  void Write(const ForwardState& state) const;
  /// @return nothing if there is no such file.
  /// @throws Error when it cannot be read, or is broken.
  std::optional<ForwardState> Read() const;

 private:
  const std::string store, path;
};

}  // namespace Velora::Ts
