#pragma once

#include <string>

// Addresses for PostgreSQL's client library: key words and values, "service=NAME", or a URI.

namespace Velora::Store {

/// Whether PostgreSQL's client library understands a text as an address.
bool IsPostgreSqlAddress(const std::string& text);

/// An address as a URI, with UTF-8 as the encoding. If neither the address nor the environment sets timeouts, adds some
/// that detect within seconds that a server does not answer.
std::string UriWithTimeouts(const std::string& address);

/// An address from UriWithTimeouts(), restricted to the server to which a connection was made.
std::string UriOfServer(const std::string& uri, const std::string& host, const std::string& hostAddress,
                        const std::string& port);

/// The name of the database in errors, without a password: "velora on db.example".
std::string NameOfDatabaseAt(const std::string& address);

}  // namespace Velora::Store
