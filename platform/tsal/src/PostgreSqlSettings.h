#pragma once

#include <string>

namespace Quor::TolvaServices::Local {

/// Whether PostgreSQL's client library understands a text as saying where to connect.
bool IsPostgreSqlConnection(const std::string& text);

/// The same connection in a form without blanks, for texts in UTF-8, and with how long to wait for a server that does
/// not answer, where neither the text nor the environment says it.
std::string WithoutBlanks(const std::string& text);

/// The same connection, from WithoutBlanks, to the one server that it led to.
std::string WithAddress(const std::string& connection, const std::string& host, const std::string& address,
                        const std::string& port);

/// Which database that is, in words and without a password: "velora on db.example".
std::string NameOf(const std::string& text);

}  // namespace Quor::TolvaServices::Local
