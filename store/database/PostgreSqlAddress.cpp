#include "store/database/PostgreSqlAddress.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>

namespace Velora::Store {
namespace {

// Short enough for an operation to fail within five seconds when the server is gone.
constexpr std::pair<const char*, const char*> defaults[] = {
    {"connect_timeout", "3"},     {"fallback_application_name", "Velora"},
    {"keepalives_count", "2"},    {"keepalives_idle", "2"},
    {"keepalives_interval", "1"}, {"tcp_user_timeout", "4000"},
};

std::map<std::string, std::string> Options(PQconninfoOption* parsed) {
  const std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)> options(parsed, &PQconninfoFree);
  std::map<std::string, std::string> given;
  for (const PQconninfoOption* option = options.get(); option != nullptr && option->keyword != nullptr; ++option) {
    if (option->val != nullptr) {
      given.emplace(option->keyword, option->val);
    }
  }
  return given;
}

void AppendEscaped(std::string& uri, const std::string& value) {
  for (const char character : value) {
    std::array<char, 4> escaped{};
    static_cast<void>(std::snprintf(escaped.data(), escaped.size(), "%%%02X", static_cast<unsigned char>(character)));
    uri += escaped.data();
  }
}

std::string ToUri(const std::map<std::string, std::string>& options) {
  std::string uri = "postgresql://";
  char separator = '?';
  for (const auto& [keyword, value] : options) {
    uri += separator + keyword + '=';
    AppendEscaped(uri, value);
    separator = '&';
  }
  return uri;
}

// Of a list as the client library has it: "a,,b".
std::vector<std::string> Parts(const std::string& list) {
  std::vector<std::string> parts(1);
  for (const char character : list) {
    if (character == ',') {
      parts.emplace_back();
    } else {
      parts.back() += character;
    }
  }
  return parts;
}

// An unescaped "@" or "/" in a password ends a part of the URI too early; the rest of the password would be in errors.
bool IsTornPassword(std::map<std::string, std::string>& options) {
  return options["host"].find('@') != std::string::npos ||
         options["port"].find_first_not_of("0123456789,") != std::string::npos ||
         options["dbname"].find_first_of("@=") != std::string::npos ||
         options["dbname"].find("://") != std::string::npos;
}

}  // namespace

bool IsPostgreSqlAddress(const std::string& text) {
  std::map<std::string, std::string> options = Options(PQconninfoParse(text.c_str(), nullptr));
  return text.find('\0') == std::string::npos && !options.empty() && !IsTornPassword(options);
}

std::string UriWithTimeouts(const std::string& address) {
  std::map<std::string, std::string> options = Options(PQconninfoParse(address.c_str(), nullptr));
  const std::map<std::string, std::string> environment = Options(PQconndefaults());
  for (const auto& [keyword, value] : defaults) {
    if (environment.count(keyword) == 0) {
      options.emplace(keyword, value);
    }
  }
  options["client_encoding"] = "UTF8";
  return ToUri(options);
}

KnownServers ServersOf(PGconn* connection) {
  std::map<std::string, std::string> options = Options(PQconninfo(connection));
  const std::vector<std::string> hosts = Parts(options["host"]);
  const std::vector<std::string> hostAddresses = Parts(options["hostaddr"]);
  const std::vector<std::string> ports = Parts(options["port"]);
  const auto part = [](const std::vector<std::string>& parts, std::size_t at) {
    return at < parts.size() ? parts[at] : "";
  };
  KnownServers known;
  for (std::size_t at = 0; at < std::max(hosts.size(), hostAddresses.size()); ++at) {
    known.servers.push_back({part(hosts, at), part(hostAddresses, at), part(ports, ports.size() == 1 ? 0 : at)});
  }
  const std::string& wanted = options["target_session_attrs"];
  known.wanted = wanted == "prefer-standby" ? std::vector<std::string>{"standby", "any"} : std::vector{wanted};
  known.timeout = std::chrono::seconds(std::strtol(options["connect_timeout"].c_str(), nullptr, 10));
  return known;
}

std::string UriOfServer(const std::string& uri, const ServerAddress& server, const std::string& wanted) {
  std::map<std::string, std::string> options = Options(PQconninfoParse(uri.c_str(), nullptr));
  options["host"] = server.host;
  options["hostaddr"] = server.hostAddress;
  options["port"] = server.port;
  if (!wanted.empty()) {
    options["target_session_attrs"] = wanted;
  }
  return ToUri(options);
}

std::string NameOfDatabaseAt(const std::string& address) {
  std::map<std::string, std::string> options = Options(PQconninfoParse(address.c_str(), nullptr));
  options.merge(Options(PQconndefaults()));
  const std::string& host = options["host"].empty() ? options["hostaddr"] : options["host"];
  const std::string name = options["dbname"].empty() ? options["service"] : options["dbname"];
  return (name.empty() ? "of " + options["user"] : name) + (host.empty() ? "" : " on " + host);
}

}  // namespace Velora::Store
