#pragma once

#include "serving/http/Question.h"

#include <string>
#include <string_view>

namespace Velora::Http {

/// What a request names.
struct Target {
  std::string path;
  Question::Parameters parameters;
};

/// Reads the target of a request, such as "/api/runs?limit=10".
/// @throws Refusal with status 400 when it is anything but a path with parameters: with an encoding that is broken,
/// text that is not in UTF-8, or zero bytes.
Target ReadTarget(std::string_view target);

}  // namespace Velora::Http
