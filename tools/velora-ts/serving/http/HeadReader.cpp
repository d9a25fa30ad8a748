#include "serving/http/HeadReader.h"

#include "serving/http/Answer.h"
#include "serving/http/Limits.h"

#include <algorithm>
#include <array>

namespace Velora::Http {

namespace {

constexpr std::string_view endOfHead = "\r\n\r\n";

}  // namespace

std::optional<Head> HeadReader::Next() {
  client.AwaitRequest();
  if (!ReceiveHead()) {
    return std::nullopt;
  }
  const std::string head = received.substr(0, length);
  received.erase(0, length);
  return ReadHead(head);
}

bool HeadReader::ReceiveHead() {
  std::array<char, 4096> buffer{};
  for (std::size_t looked = 0;;) {
    const std::size_t end = received.find(endOfHead, looked);
    if (end != std::string::npos) {
      length = end + endOfHead.size();
      return true;
    }
    if (received.size() > longestHead) {
      const bool isTarget = received.find("\r\n") == std::string::npos;
      throw Refusal(isTarget ? 414 : 431, std::string(isTarget ? "the address" : "the head of the request") +
                                              " is too long; expected a head of at most " +
                                              std::to_string(longestHead) + " bytes");
    }
    looked = received.size() - std::min(received.size(), endOfHead.size() - 1);
    const std::size_t count = client.Receive(buffer.data(), buffer.size());
    if (count == 0) {
      return false;
    }
    received.append(buffer.data(), count);
  }
}

}  // namespace Velora::Http
