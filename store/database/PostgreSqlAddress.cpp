#include "store/database/PostgreSqlAddress.h"

#include <libpq-fe.h>

#include <array>
#include <cstdio>
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

std::string UriOfServer(const std::string& uri, const std::string& host, const std::string& hostAddress,
                        const std::string& port) {
  std::map<std::string, std::string> options = Options(PQconninfoParse(uri.c_str(), nullptr));
  options["host"] = host;
  options["hostaddr"] = hostAddress;
  options["port"] = port;
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
