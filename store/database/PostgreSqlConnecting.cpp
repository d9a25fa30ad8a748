#include "store/database/PostgreSqlConnecting.h"

#include "store/database/PostgreSqlAddress.h"

#include <VeloraSystem/Sockets.h>

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

namespace Velora::Store {
namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::duration unlimited = std::chrono::hours(1000);
constexpr std::chrono::milliseconds longestLook{100};

PostgreSqlHandle Start(const std::string& uri) {
  PostgreSqlHandle handle(PQconnectStart(uri.c_str()), &PQfinish);
  if (!handle) {
    throw std::bad_alloc();
  }
  return handle;
}

/// Goes through the servers until one takes the connection or the time is over.
class Search {
 public:
  Search(const std::string& uri, Clock::duration longest) : uri(uri), left(longest) {}

  /// @param parts into how many the time that is left is divided; this is one of them.
  void Continue(PostgreSqlHandle handle, std::size_t parts) {
    const Clock::time_point start = Clock::now();
    const Clock::time_point end = start + left / static_cast<Clock::rep>(parts);
    const char* whyNot = "";
    PostgresPollingStatusType next =
        PQstatus(handle.get()) == CONNECTION_BAD ? PGRES_POLLING_FAILED : PGRES_POLLING_WRITING;
    while (next == PGRES_POLLING_READING || next == PGRES_POLLING_WRITING) {
      const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
      if (time.count() <= 0) {
        next = PGRES_POLLING_FAILED;
        whyNot = "timeout expired";  // after the server's name
      } else if (System::AwaitSocket(PQsocket(handle.get()), next == PGRES_POLLING_WRITING,
                                     std::min(time, longestLook))) {
        next = PQconnectPoll(handle.get());
      }
    }
    left -= Clock::now() - start;
    result.took += Clock::now() - start;
    if (next == PGRES_POLLING_OK) {
      result.handle = std::move(handle);
    } else {
      result.whyNot += PQerrorMessage(handle.get()) + std::string(whyNot) + '\n';
    }
  }

  /// Tries each IP address of a server.
  void Try(const ServerAddress& server, const std::string& wanted, std::size_t servers) {
    const std::vector<std::string> addresses = AddressesOf(server);
    const Clock::duration others = left - left / static_cast<Clock::rep>(servers);
    left -= others;
    for (std::size_t at = 0; at < addresses.size() && !result.handle; ++at) {
      Continue(Start(UriOfServer(uri, {server.host, addresses[at], server.port}, wanted)), addresses.size() - at);
    }
    left += others;
  }

  /// The IP addresses of a server; one empty text if only the client library knows what it means.
  static std::vector<std::string> AddressesOf(const ServerAddress& server) {
    if (!server.hostAddress.empty() || server.host.empty() || server.host[0] == '/' || server.host[0] == '@') {
      return {server.hostAddress};
    }
    std::vector<std::string> addresses = System::AddressesOf(server.host);
    return addresses.empty() ? std::vector<std::string>{""} : addresses;
  }

  PostgreSqlConnecting result;

 private:
  const std::string& uri;
  Clock::duration left;
};

}  // namespace

// The client library knows what the service file and the environment say only once it has begun to connect.
PostgreSqlConnecting ConnectToOneOf(const std::string& uri, std::optional<Clock::duration> longest) {
  PostgreSqlHandle first = Start(uri);
  const KnownServers known = ServersOf(first.get());
  const Clock::duration timeout = known.timeout.count() > 0 ? Clock::duration(known.timeout) : unlimited;
  Search search(uri, longest.value_or(timeout));
  const bool isOne = known.servers.size() == 1 && Search::AddressesOf(known.servers.front()).size() == 1;
  if (isOne || PQstatus(first.get()) == CONNECTION_BAD) {
    search.Continue(std::move(first), 1);
    return std::move(search.result);
  }
  first.reset();
  std::size_t parts = known.wanted.size() * known.servers.size();
  for (const std::string& wanted : known.wanted) {
    for (const ServerAddress& server : known.servers) {
      search.Try(server, wanted, parts--);
      if (search.result.handle) {
        return std::move(search.result);
      }
    }
  }
  return std::move(search.result);
}

}  // namespace Velora::Store
