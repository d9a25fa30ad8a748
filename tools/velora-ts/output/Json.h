#pragma once

#include <Json.h>

#include <string>
#include <string_view>

namespace Velora::Ts {

// The JSON of docs/record-format.md.

using Quor::TolvaServices::Local::AppendHex;
using Quor::TolvaServices::Local::AppendNumber;
using Quor::TolvaServices::Local::AppendServerNumber;
using Quor::TolvaServices::Local::AppendText;

/// What the store should not hold at all: {"blob":"..."}, in hexadecimal digits.
void AppendBlob(std::string& json, std::string_view bytes);

}  // namespace Velora::Ts
