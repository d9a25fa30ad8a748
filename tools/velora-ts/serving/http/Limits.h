#pragma once

#include <chrono>
#include <cstddef>

namespace Velora::Http {

// What one client can take from a server at most, whatever it sends.

constexpr std::size_t longestHead = 32 * 1024;  // of a request, in bytes
constexpr std::size_t longestTarget = 8 * 1024;
constexpr std::size_t mostHeaders = 100;

constexpr std::size_t mostConnections =
    256;                               // a further one takes the place of the one whose client is awaited longest
constexpr std::size_t mostLive = 128;  // answers that go on, at once
constexpr std::size_t mostHeavy = 2;
constexpr std::size_t mostWaiting = 32;  // for the end of a heavy answer

constexpr std::chrono::seconds idleTime(30);      // between two requests of a connection
constexpr std::chrono::seconds headTime(10);      // for a whole head, from its first byte
constexpr std::chrono::seconds heavyTime(20);     // to wait for the end of a heavy answer
constexpr std::chrono::seconds readerTime(10);    // for which a client can take nothing
constexpr std::size_t slowestReader = 16 * 1024;  // bytes that it has to take in each second beyond that
constexpr std::chrono::seconds stalledTime(1);    // after which it can lose its place
constexpr std::chrono::seconds farewellTime(1);   // in which a client that was refused can read why

}  // namespace Velora::Http
