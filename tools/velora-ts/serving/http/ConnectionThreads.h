#pragma once

#include "serving/http/Connections.h"

#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <thread>

namespace Velora::Http {

/// A thread for each connection, of which there are so many at most. For a further one, another is ended.
class ConnectionThreads : public httplib::TaskQueue {
 public:
  ConnectionThreads(Connections& connections, std::size_t most) : connections(connections), most(most) {}

  void enqueue(std::function<void()> answer) override;
  void shutdown() override;

 private:
  using Threads = std::list<std::thread>;
  void JoinEnded(std::unique_lock<std::mutex>& lock);
  bool Start(const std::function<void()>& answer);

  Connections& connections;
  const std::size_t most;
  std::mutex mutex;
  std::condition_variable oneEnded;
  Threads threads;
  Threads ended;  // which are to be joined
};

}  // namespace Velora::Http
