#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <thread>
#include <vector>

/// Stands between hosts and a server, both by sockets in folders. While it stalls, it passes nothing on and keeps
/// everything open; afterwards it has forgotten the connections that there were.
class Proxy {
 public:
  Proxy(const std::filesystem::path& folder, std::filesystem::path server) : server(std::move(server)) {
    create_directory(folder);
    const sockaddr_un address = AddressIn(folder);
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener, 9), 0);
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
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // until it does
    server = another;
    stalls = false;
  }

  std::atomic<bool> stalls{false};

 private:
  static sockaddr_un AddressIn(const std::filesystem::path& folder) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = folder / ".s.PGSQL.5432";
    std::copy(path.begin(), path.end(), address.sun_path);
    return address;
  }
  void Pass() {
    if (stalls) {
      while (stalls && !over) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
      }
      return Forget();
    }
    std::vector<pollfd> sockets{{listener, POLLIN, 0}};
    for (const auto& [socket, other] : others) {
      sockets.push_back({socket, POLLIN, 0});
    }
    poll(sockets.data(), sockets.size(), 10);
    for (const pollfd& socket : sockets) {
      if (socket.revents != 0 && socket.fd == listener) {
        Accept();
      } else if (socket.revents != 0 && others.count(socket.fd) > 0 && !stalls) {
        PassFrom(socket.fd);
      }
    }
  }
  void Accept() {
    const int host = accept(listener, nullptr, nullptr);
    const int there = socket(AF_UNIX, SOCK_STREAM, 0);
    const sockaddr_un address = AddressIn(server);
    EXPECT_EQ(connect(there, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    others[host] = there;
    others[there] = host;
  }
  void PassFrom(int from) {
    const int to = others[from];
    const ssize_t size = recv(from, buffer.data(), buffer.size(), 0);
    if (size <= 0 || send(to, buffer.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL) != size) {
      for (const int ended : {from, to}) {
        others.erase(ended);
        close(ended);
      }
    }
  }
  void Forget() {
    for (const auto& [socket, other] : others) {
      close(socket);
    }
    others.clear();
  }

  std::filesystem::path server;
  const int listener = socket(AF_UNIX, SOCK_STREAM, 0);
  std::map<int, int> others;  // the two ends of each connection
  std::array<char, 65536> buffer{};
  std::atomic<bool> over{false};
  std::thread thread;
};
