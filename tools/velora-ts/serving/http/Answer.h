#pragma once

#include "store/Error.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace Velora::Http {

/// Sends a piece of an answer. @throws Error when the client is gone, or takes nothing for too long.
using Send = std::function<void(std::string_view piece)>;

/// What a request gets.
struct Answer {
  int status = 200;
  std::string type = "application/json";  ///< The media type; a text is in UTF-8.
  std::string body = "";                  ///< All of it, if it is short.
  std::function<void(const Send&)> write =
      {};  ///< Writes it in pieces instead; called once, on the thread of the request.
  std::map<std::string, std::string> headers = {};  ///< Beside those that every answer has.
};

/// A request that gets an error instead: as JSON, {"error": "what was wrong and what was expected"}.
class Refusal : public Store::Error {
 public:
  Refusal(int status, const std::string& why) : Error(why), status(status) {}
  int Status() const { return status; }

 private:
  int status;
};

}  // namespace Velora::Http
