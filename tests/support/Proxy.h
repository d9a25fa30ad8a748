#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

/// Stands between hosts and a server, both by sockets in folders. While it stalls, it passes nothing on and keeps
/// everything open; afterwards it has forgotten the connections that there were.
class Proxy {
 public:
  Proxy(const std::filesystem::path& folder, std::filesystem::path server) : server(std::move(server)) {
    create_directory(folder);
    const sockaddr_un address = AddressIn(folder);
    Expect(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address));
    Expect(listen(listener, 99));
    thread = std::thread([this] {
      while (!over) {
        Pass();
      }
    });
  }
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;
  ~Proxy() {
    over = true;
    thread.join();
    Forget();
    close(listener);
  }

  /// From now on to another server.
  void LeadTo(const std::filesystem::path& another) {
    stalls = true;
    stands.wait(false);
    server = another;
    GoOn();
  }
  /// Stalls no longer. When this returns, the connections that there were are forgotten.
  void GoOn() {
    stands.wait(false);
    stalls = false;
    stands.wait(true);
  }

  std::atomic<bool> stalls{false};
  /// How long a message is under way.
  std::atomic<std::chrono::microseconds> delay{};
  /// How often the server answered a host after its login.
  std::atomic<int> roundTrips{0};

 private:
  using Clock = std::chrono::steady_clock;

  struct Connection {
    int other;
    bool isHost;
  };
  struct Message {
    Clock::time_point due;
    int to;
    std::string bytes;
  };

  static void Expect(int result) {
    if (result != 0) {
      throw std::system_error(errno, std::generic_category(), "the proxy");
    }
  }
  static sockaddr_un AddressIn(const std::filesystem::path& folder) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = folder / ".s.PGSQL.5432";
    std::copy(path.begin(), path.end(), address.sun_path);
    return address;
  }
  void Pass() {
    if (stalls) {
      Stand(true);
      while (stalls && !over) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
      }
      Forget();
      return Stand(false);
    }
    std::vector<pollfd> sockets{{listener, POLLIN, 0}};
    for (const auto& [socket, connection] : connections) {
      sockets.push_back({socket, POLLIN, 0});
    }
    const auto longest = std::chrono::nanoseconds(std::chrono::milliseconds(10));
    const auto wait = underWay.empty() ? longest : std::clamp(underWay.front().due - Clock::now(), {}, longest);
    const timespec time{0, wait.count()};
    ppoll(sockets.data(), sockets.size(), &time, nullptr);
    for (const pollfd& socket : sockets) {
      if (socket.revents != 0 && socket.fd == listener) {
        Accept();
      } else if (socket.revents != 0 && connections.count(socket.fd) > 0 && !stalls) {
        TakeFrom(socket.fd);
      }
    }
    for (; !underWay.empty() && underWay.front().due <= Clock::now(); underWay.pop_front()) {
      Deliver(underWay.front());
    }
  }
  void Stand(bool still) {
    stands = still;
    stands.notify_all();
  }
  void Accept() {
    const int host = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    const int there = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressIn(server);
    if (connect(there, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      close(host);
      close(there);
      return;
    }
    connections[host] = {there, true};
    connections[there] = {host, false};
  }
  void TakeFrom(int from) {
    const Connection connection = connections[from];
    const ssize_t size = recv(from, buffer.data(), buffer.size(), 0);
    if (size <= 0) {
      return End(from);
    }
    const std::string_view bytes(buffer.data(), static_cast<std::size_t>(size));
    Count(connection.isHost ? from : connection.other, connection.isHost, bytes);
    underWay.push_back({Clock::now() + delay.load(), connection.other, std::string(bytes)});
  }
  void Count(int host, bool isHost, std::string_view bytes) {
    if (isHost) {
      asking[host] = true;
    } else if (loggedIn[host]) {
      roundTrips += std::exchange(asking[host], false) ? 1 : 0;
    } else if (bytes.find(readyForStatements) != std::string_view::npos) {
      loggedIn[host] = true;
      asking[host] = false;
    }
  }
  void Deliver(const Message& message) {
    if (connections.count(message.to) > 0 && send(message.to, message.bytes.data(), message.bytes.size(),
                                                  MSG_NOSIGNAL) != static_cast<ssize_t>(message.bytes.size())) {
      End(message.to);
    }
  }
  void End(int socket) {
    for (const int ended : {socket, connections[socket].other}) {
      connections.erase(ended);
      loggedIn.erase(ended);
      asking.erase(ended);
      close(ended);
    }
  }
  void Forget() {
    for (const auto& [socket, connection] : connections) {
      close(socket);
    }
    connections.clear();
    loggedIn.clear();
    asking.clear();
    underWay.clear();
  }

  std::filesystem::path server;
  const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  static constexpr std::string_view readyForStatements{"Z\0\0\0\5I", 6};
  std::map<int, Connection> connections;  // both ends of each
  std::map<int, bool> loggedIn;           // by the end at the host, as below
  std::map<int, bool> asking;
  std::deque<Message> underWay;
  std::array<char, 65536> buffer{};
  std::atomic<bool> stands{false};  // since it noticed that it is to stall
  std::atomic<bool> over{false};
  std::thread thread;
};
