#pragma once

#include "serving/http/Answer.h"
#include "serving/http/Question.h"

#include <functional>
#include <map>
#include <string>

namespace Velora::Http {

/// How much an answer takes.
enum class Weight {
  Light,
  Heavy,  ///< It reads much of a store: few at once, and the others wait.
  Live,   ///< It goes on until the client leaves.
};

/// What answers the requests of one path.
struct Handler {
  Weight weight = Weight::Light;
  /// Called on the thread of the request, of several at once. A Refusal becomes an answer; any other error status 500.
  std::function<Answer(Question&)> answer;
};

/// By their paths.
using Handlers = std::map<std::string, Handler>;

}  // namespace Velora::Http
