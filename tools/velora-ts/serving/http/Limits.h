#pragma once

#include <chrono>
#include <cstddef>

namespace Velora::Http {

// The largest request.
constexpr std::size_t longestHead = std::size_t{32} * 1024;  // in bytes
constexpr std::size_t longestTarget = std::size_t{8} * 1024;
constexpr std::size_t mostHeaders = 100;

/// What clients can take from a server at most, whatever they send.
struct Limits {
  std::size_t connections = 256;  ///< A further one takes the place of the one whose client is awaited longest.
  std::size_t live = 128;         ///< Answers that go on, at once.
  std::size_t heavy = 2;          ///< Heavy answers at once.
  std::size_t waiting = 32;       ///< Requests that wait until a heavy answer has ended.

  using Time = std::chrono::milliseconds;
  Time idle = std::chrono::seconds(30);    ///< Between two requests of a connection.
  Time head = std::chrono::seconds(10);    ///< For a whole head, from its first byte.
  Time turn = std::chrono::seconds(20);    ///< To wait until a heavy answer has ended.
  Time reader = std::chrono::seconds(10);  ///< For which a client can take nothing of its answer.
  /// The same in all, and a second more for each so many bytes of the answer.
  std::size_t bytesPerSecond = std::size_t{16} * 1024;
  Time stalled = std::chrono::seconds(1);   ///< After which a client that takes nothing can lose its place.
  Time farewell = std::chrono::seconds(1);  ///< In which a client can read an answer that ends its connection.
};

}  // namespace Velora::Http
