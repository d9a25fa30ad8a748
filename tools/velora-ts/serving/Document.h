#pragma once

#include "page/writer/Frame.h"
#include "serving/http/Answer.h"

#include <string>

namespace Velora::Ts {

/// A page as an answer. A browser asks each time whether it is still the same.
/// @param data what the page begins with, as JSON.
Http::Answer DocumentOf(const Page::Frame& frame, const std::string& data);

}  // namespace Velora::Ts
