#pragma once

#include <TSAL/Types.h>

#include <string>

namespace Quor::TolvaServices::Local {

/// A new random guid (version 4), in lower case.
std::string NewGuid();

/// The guid of an identity that was given, in lower case.
/// @param what what it should identify, for the error.
/// @throws TsError naming the text when it is no guid.
std::string GuidOf(const Types::Tsid& id, const char* what);

}  // namespace Quor::TolvaServices::Local
