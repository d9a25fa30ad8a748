#include "serving/http/SocketClient.h"

#ifdef _WIN32
#define poll WSAPoll
#else
#include <fcntl.h>
#include <poll.h>
#endif

#include <algorithm>
#include <array>
#include <cerrno>

namespace Velora::Http {

namespace {

using namespace std::chrono_literals;

#ifdef _WIN32
using Size = int;
constexpr int noSignal = 0;

bool WouldBlock() { return WSAGetLastError() == WSAEWOULDBLOCK; }

void LetNothingBlock(socket_t socket) {
  u_long yes = 1;
  ioctlsocket(socket, static_cast<long>(FIONBIO), &yes);
}
#else
using Size = std::size_t;
constexpr int noSignal = MSG_NOSIGNAL;

bool WouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

void LetNothingBlock(socket_t socket) { fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK); }
#endif

/// Waits until a socket can be read or written, or is closed. @return false when it took longer.
bool Await(socket_t socket, short what, std::chrono::steady_clock::duration longest) {
  const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(std::max(longest, longest.zero()));
  pollfd asked{socket, what, 0};
  return poll(&asked, 1, static_cast<int>(milliseconds.count())) != 0;
}

}  // namespace

SocketClient::SocketClient(Connections::Connection& connection, const Limits& limits)
    : connection(connection), limits(limits) {
  LetNothingBlock(connection.Socket());
}

void SocketClient::AwaitRequest() {
  connection.AwaitsRequest();
  hasBegun = false;
  receivesUntil = Clock::now() + limits.idle;
}

void SocketClient::BeginAnswer() {
  connection.Acts();
  sent = 0;
  waited = Clock::duration::zero();
}

std::size_t SocketClient::Receive(char* buffer, std::size_t size) {
  for (;;) {
    const auto count = recv(connection.Socket(), buffer, static_cast<Size>(size), 0);
    if (count > 0) {
      receivesUntil = hasBegun ? receivesUntil : Clock::now() + limits.head;
      hasBegun = true;
      return static_cast<std::size_t>(count);
    }
    if (count == 0 || !WouldBlock() || !Await(connection.Socket(), POLLIN, receivesUntil - Clock::now())) {
      return 0;
    }
  }
}

bool SocketClient::Send(std::string_view bytes) {
  if (bytes.empty()) {
    return IsThere();
  }
  while (!bytes.empty()) {
    const auto count = send(connection.Socket(), bytes.data(), static_cast<Size>(bytes.size()), noSignal);
    if (count > 0) {
      sent += static_cast<std::size_t>(count);
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (!WouldBlock() || !AwaitReader()) {
      return false;
    }
  }
  return true;
}

bool SocketClient::IsThere() const {
  char byte = 0;
  const auto count = recv(connection.Socket(), &byte, 1, MSG_PEEK);
  return count > 0 || (count < 0 && WouldBlock());
}

// Whoever takes a byte now and then must not hold an answer for ever either.
bool SocketClient::AwaitReader() {
  const Clock::duration granted = limits.reader + std::chrono::milliseconds(1000 * sent / limits.bytesPerSecond);
  const Clock::time_point begin = Clock::now();
  connection.AwaitsReader();
  const bool isReady = Await(connection.Socket(), POLLOUT, limits.reader);
  connection.Acts();
  waited += Clock::now() - begin;
  return isReady && waited < granted;
}

void SocketClient::Farewell() {
  connection.AwaitsRequest();
#ifdef _WIN32
  shutdown(connection.Socket(), SD_SEND);
#else
  shutdown(connection.Socket(), SHUT_WR);
#endif
  const Clock::time_point end = Clock::now() + limits.farewell;
  std::array<char, std::size_t{16} * 1024> rest{};
  hasBegun = true;
  receivesUntil = end;
  while (Clock::now() < end && Receive(rest.data(), rest.size()) > 0) {
  }
}

}  // namespace Velora::Http
