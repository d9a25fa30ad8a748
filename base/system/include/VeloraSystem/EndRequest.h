#pragma once

#include <chrono>
#include <memory>

namespace Velora::System {

/// While it exists, Ctrl-C, and what asks a service to end, do not end the process: it is to end by itself, in good
/// order. A second Ctrl-C ends it at once. A process has one such object at most.
class EndRequest {
 public:
  /// @throws Failure
  EndRequest();
  EndRequest(const EndRequest&) = delete;
  EndRequest& operator=(const EndRequest&) = delete;
  ~EndRequest();

  /// Waits, at most so long, until the process is asked to end. @return whether it was.
  bool Await(std::chrono::milliseconds longest) const;

 private:
  struct Place;
  const std::unique_ptr<Place> place;
};

}  // namespace Velora::System
