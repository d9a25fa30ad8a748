#pragma once

#include <libpq-fe.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace Velora::Store {

using PostgreSqlHandle = std::unique_ptr<PGconn, decltype(&PQfinish)>;

/// What became of connecting.
struct PostgreSqlConnecting {
  PostgreSqlHandle handle{nullptr, &PQfinish};  ///< Null if no server took the connection.
  std::string whyNot;                           ///< What each server said then.
  std::chrono::steady_clock::duration took{};   ///< With looking names up, but no more of it than leaves some time.
};

/// Connects to the first server of an address that is as `target_session_attrs` wants it. The servers, and the IP
/// addresses of their names, share the time: a silent one leaves the others theirs.
/// @param longest how long that may take; by default, the address's connect_timeout for all together.
PostgreSqlConnecting ConnectToOneOf(const std::string& uri, std::optional<std::chrono::steady_clock::duration> longest);

}  // namespace Velora::Store
