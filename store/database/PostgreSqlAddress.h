#pragma once

#include <libpq-fe.h>

#include <chrono>
#include <string>
#include <vector>

// Addresses for PostgreSQL's client library: key words and values, "service=NAME", or a URI.

namespace Velora::Store {

/// Whether PostgreSQL's client library understands a text as an address.
bool IsPostgreSqlAddress(const std::string& text);

/// An address as a URI, with UTF-8 as the encoding. If neither the address nor the environment sets timeouts, adds some
/// that detect within seconds that a server does not answer.
std::string UriWithTimeouts(const std::string& address);

/// Where one server is.
struct ServerAddress {
  std::string host;  ///< A name, or the folder of a socket.
  std::string hostAddress;
  std::string port;
};

/// Which servers a connection can lead to.
struct KnownServers {
  std::vector<ServerAddress> servers;  ///< In the order in which they are tried.
  std::vector<std::string> wanted;     ///< What target_session_attrs wants of them, at first and then.
  std::chrono::seconds timeout{};      ///< 0 for none.
};

/// The servers of a connection that was begun: also those of the environment or of a service.
KnownServers ServersOf(PGconn* connection);

/// An address from UriWithTimeouts(), restricted to one server.
/// @param wanted what target_session_attrs is then; empty for what the address says.
std::string UriOfServer(const std::string& uri, const ServerAddress& server, const std::string& wanted = "");

/// The name of the database in errors, without a password: "velora on db.example".
std::string NameOfDatabaseAt(const std::string& address);

}  // namespace Velora::Store
