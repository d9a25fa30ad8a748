#include "store/database/PostgreSqlConnecting.h"

#include "store/database/PostgreSqlAddress.h"

#include <VeloraSystem/Sockets.h>

#include <algorithm>
#include <map>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Velora::Store {
namespace {

using Clock = std::chrono::steady_clock;

constexpr Clock::duration unlimited = std::chrono::hours(1000);
constexpr std::chrono::milliseconds longestLook{100};

// A slow look-up leaves the servers that much of the time, and the operation that connects more than nothing.
constexpr Clock::duration leftByLookUps = std::chrono::seconds(1);
constexpr Clock::duration mostCountedOfLookUps = std::chrono::seconds(3);

// The client library refuses it once it knows the servers, before it asks for their names and connects.
constexpr const char* onlyToKnowServers = "only-to-know-servers";

PostgreSqlHandle Start(const std::string& uri) {
  PostgreSqlHandle handle(PQconnectStart(uri.c_str()), &PQfinish);
  if (!handle) {
    throw std::bad_alloc();
  }
  return handle;
}

bool IsName(const ServerAddress& server) {
  return server.hostAddress.empty() && !server.host.empty() && server.host[0] != '/' && server.host[0] != '@';
}

/// Says of an address that it is the one of a name, as the client library does if it asks for the name itself.
std::string WithName(std::string error, const ServerAddress& server) {
  const std::string address = '"' + server.hostAddress + '"';
  const std::size_t at = error.find(address);
  if (server.host.empty() || server.host == server.hostAddress || at == std::string::npos) {
    return error;
  }
  return error.replace(at, address.size(), '"' + server.host + "\" (" + server.hostAddress + ')');
}

/// Goes through the servers until one takes the connection or the time is over.
class Search {
 public:
  Search(const std::string& uri, Clock::duration longest) : uri(uri), left(longest), end(Clock::now() + longest) {}

  /// Tries each IP address of a server.
  void Try(const ServerAddress& server, const std::string& wanted, std::size_t servers) {
    const std::vector<std::string> addresses =
        IsName(server) ? AddressesOf(server.host) : std::vector<std::string>{server.hostAddress};
    const Clock::duration others = left - left / static_cast<Clock::rep>(servers);
    left -= others;
    for (std::size_t at = 0; at < addresses.size() && !result.handle; ++at) {
      Connect({server.host, addresses[at], server.port}, wanted, addresses.size() - at);
    }
    left += others;
  }

  PostgreSqlConnecting Result() {
    result.took = std::max(result.took, std::min(result.took + lookedUp, mostCountedOfLookUps));
    return std::move(result);
  }

  PostgreSqlConnecting result;

 private:
  /// @param parts into how many the time that is left is divided; this is one of them.
  void Connect(const ServerAddress& server, const std::string& wanted, std::size_t parts) {
    const Clock::time_point start = Clock::now();
    const Clock::time_point endOfPart = start + left / static_cast<Clock::rep>(parts);
    PostgreSqlHandle handle = Start(UriOfServer(uri, server, wanted));
    const char* whyNot = "";
    PostgresPollingStatusType next =
        PQstatus(handle.get()) == CONNECTION_BAD ? PGRES_POLLING_FAILED : PGRES_POLLING_WRITING;
    while (next == PGRES_POLLING_READING || next == PGRES_POLLING_WRITING) {
      const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(endOfPart - Clock::now());
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
      result.whyNot += WithName(PQerrorMessage(handle.get()), server) + whyNot + '\n';
    }
  }

  /// The IP addresses of a name, for which the system is asked once, while there is time: nothing ends its look-up.
  const std::vector<std::string>& AddressesOf(const std::string& name) {
    const auto [known, isNew] = names.try_emplace(name);
    if (isNew) {
      const Clock::time_point start = Clock::now();
      try {
        if (start >= end) {
          throw std::runtime_error("timeout expired");
        }
        known->second = System::AddressesOf(name);
      } catch (const std::runtime_error& error) {
        result.whyNot += "could not translate host name \"" + name + "\" to address: " + error.what() + '\n';
      }
      const Clock::duration took = Clock::now() - start;
      lookedUp += took;
      left = std::max(left - took, std::min(left, leftByLookUps));
    }
    return known->second;
  }

  const std::string& uri;
  Clock::duration left;
  const Clock::time_point end;
  Clock::duration lookedUp{};
  std::map<std::string, std::vector<std::string>> names;
};

}  // namespace

// The client library knows what the service file and the environment say only once it has begun to connect.
PostgreSqlConnecting ConnectToOneOf(const std::string& uri, std::optional<Clock::duration> longest) {
  const PostgreSqlHandle first = Start(uri + "&gssencmode=" + onlyToKnowServers);
  PostgreSqlConnecting refused;
  refused.whyNot = PQerrorMessage(first.get());
  if (refused.whyNot.find(onlyToKnowServers) == std::string::npos) {
    return refused;
  }
  const KnownServers known = ServersOf(first.get());
  const Clock::duration timeout = known.timeout.count() > 0 ? Clock::duration(known.timeout) : unlimited;
  Search search(uri, longest.value_or(timeout));
  std::size_t parts = known.wanted.size() * known.servers.size();
  for (const std::string& wanted : known.wanted) {
    for (const ServerAddress& server : known.servers) {
      search.Try(server, wanted, parts--);
      if (search.result.handle) {
        return search.Result();
      }
    }
  }
  return search.Result();
}

}  // namespace Velora::Store
