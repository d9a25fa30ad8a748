#pragma once

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#ifdef _WIN32
using Socket = SOCKET;
using Size = int;
constexpr int ofBytes = SOCK_STREAM;
constexpr int withoutSignal = 0;
inline int Poll(pollfd* asked, int milliseconds) { return WSAPoll(asked, 1, milliseconds); }
inline void Close(Socket socket) { closesocket(socket); }
#else
using Socket = int;
using Size = std::size_t;
constexpr int ofBytes = SOCK_STREAM | SOCK_CLOEXEC;
constexpr int withoutSignal = MSG_NOSIGNAL;
inline int Poll(pollfd* asked, int milliseconds) { return poll(asked, 1, milliseconds); }
inline void Close(Socket socket) { close(socket); }
#endif

/// A connection to a server on this computer, over which a test sends and receives bytes.
class Caller {
 public:
  explicit Caller(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    isConnected = connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;
  ~Caller() { Close(socket); }

  bool IsConnected() const { return isConnected; }
  /// @return false when the server has closed the connection.
  bool Send(std::string_view bytes) const {
    while (!bytes.empty()) {
      const auto count = send(socket, bytes.data(), static_cast<Size>(bytes.size()), withoutSignal);
      if (count <= 0) {
        return false;
      }
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }
  /// All bytes until the server closes the connection.
  std::string ReceiveAll() const {
    std::string all;
    for (std::string some = ReceiveSome(); !some.empty(); some = ReceiveSome()) {
      all += some;
    }
    return all;
  }
  /// Bytes until some words are among them; fewer when the connection is closed before.
  std::string ReceiveUntil(std::string_view words) const {
    std::string all;
    while (all.find(words) == std::string::npos) {
      const std::string some = ReceiveSome();
      if (some.empty()) {
        break;
      }
      all += some;
    }
    return all;
  }
  /// Whether there is something to receive.
  bool HasAnswer() const {
    pollfd asked{socket, POLLIN, 0};
    return Poll(&asked, 0) > 0;
  }
  /// Whether the server closes the connection, in a time in which a test would rather fail.
  bool IsClosed() const {
    pollfd asked{socket, POLLIN, 0};
    while (Poll(&asked, 30'000) > 0) {
      if (ReceiveSome().empty()) {
        return true;
      }
    }
    return false;
  }

 private:
  std::string ReceiveSome() const {
    std::array<char, 65536> buffer{};
    const auto count = recv(socket, buffer.data(), static_cast<Size>(buffer.size()), 0);
    return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : "";
  }

  const Socket socket = ::socket(AF_INET, ofBytes, 0);
  bool isConnected = false;
};

/// A request as a browser sends it at least.
inline std::string Get(const std::string& target, const std::string& headers = "") {
  return "GET " + target + " HTTP/1.1\r\nHost: localhost\r\n" + headers + "\r\n";
}

/// What a server answers to bytes, until it closes the connection.
inline std::string AnswerTo(int port, const std::string& bytes) {
  const Caller caller(port);
  caller.Send(bytes);
  return caller.ReceiveAll();
}

inline std::string AnswerToGet(int port, const std::string& target, const std::string& headers = "") {
  return AnswerTo(port, Get(target, "Connection: close\r\n" + headers));
}

/// The status of an answer; 0 if it is none.
inline int StatusOf(const std::string& answer) {
  constexpr std::string_view begin = "HTTP/1.1 ";
  return answer.starts_with(begin) ? std::stoi(answer.substr(begin.size(), 3)) : 0;
}

inline std::string BodyOf(const std::string& answer) {
  const std::size_t end = answer.find("\r\n\r\n");
  return end == std::string::npos ? "" : answer.substr(end + 4);
}
