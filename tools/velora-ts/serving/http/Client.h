#pragma once

#include <cstddef>
#include <string_view>

namespace Velora::Http {

/// The connection to a client. It waits no longer than Limits.h says.
class Client {
 public:
  Client() = default;
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  virtual ~Client() = default;

  /// To be called before the head of each request is received, for which the time begins.
  virtual void AwaitRequest() = 0;
  /// To be called before an answer is sent, for which the time begins.
  virtual void BeginAnswer() = 0;
  /// Waits for bytes. @return how many came; 0 when there will be no more, or it took too long.
  virtual std::size_t Receive(char* buffer, std::size_t size) = 0;
  /// Sends all bytes; without any, it only looks whether the client is there. @return false when the client is gone, or
  /// does not take them.
  virtual bool Send(std::string_view bytes) = 0;
};

}  // namespace Velora::Http
