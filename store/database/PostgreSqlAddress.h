#pragma once

#include <string>

// How PostgreSQL's client library is told where to connect: key words and values, "service=NAME", or a URI.

namespace Velora::Store {

/// Whether PostgreSQL's client library understands a text as saying where to connect.
bool IsPostgreSqlAddress(const std::string& text);

/// The same address as a URI, for texts in UTF-8, with timeouts by which a server that does not answer is noticed
/// within seconds, where neither the text nor the environment states any.
std::string UriWithTimeouts(const std::string& address);

/// An address, from UriWithTimeouts, narrowed down to the one server that a connection led to.
std::string UriOfServer(const std::string& uri, const std::string& host, const std::string& hostAddress,
                        const std::string& port);

/// The database in words and without a password: "velora on db.example".
std::string NameOfDatabaseAt(const std::string& address);

}  // namespace Velora::Store
