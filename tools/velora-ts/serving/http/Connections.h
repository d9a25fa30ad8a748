#pragma once

#include <httplib.h>

#include <chrono>
#include <mutex>
#include <set>

namespace Velora::Http {

/// The connections that are open. Any thread may use it.
class Connections {
 public:
  using Clock = std::chrono::steady_clock;

  /// @param stalled after which a connection whose client takes nothing can be ended.
  explicit Connections(std::chrono::milliseconds stalled) : stalled(stalled) {}

  /// One of them, while it exists. It does not close the socket, which has to stay open meanwhile.
  class Connection {
   public:
    Connection(Connections& all, socket_t socket);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    socket_t Socket() const { return socket; }
    /// Says that its client is to send a request. The time for that begins.
    void AwaitsRequest();
    /// Says that its client takes nothing at the moment.
    void AwaitsReader();
    /// Says that the server is to act.
    void Acts();

   private:
    friend class Connections;
    enum class State { Acts, AwaitsRequest, AwaitsReader };
    void Enter(State next);

    Connections& all;
    const socket_t socket;
    State state = State::Acts;
    Clock::time_point since;
  };

  /// Ends the one whose client has been awaited longest, if there is one. Its thread gives it up soon.
  void EndOne();
  /// Ends all of them.
  void EndAll();

 private:
  using Set = std::set<Connection*>;
  const std::chrono::milliseconds stalled;
  std::mutex mutex;
  Set open;
};

}  // namespace Velora::Http
