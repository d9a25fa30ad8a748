#pragma once

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The folder of the file that holds this very code, with a separator at its end; empty when it cannot be told.
std::wstring GetModuleDirectory();

/// Wide text, ended by a zero or null, as one byte per character.
/// @throws std::bad_cast for a text that has no such form in the runtime's current locale.
std::string ToNarrowString(const wchar_t* text);

}  // namespace Quor::Velora::Infra::TsLogging
