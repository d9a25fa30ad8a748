#pragma once

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// The folder of the file that contains this code, with a separator at its end. Empty when the system does not return
/// it.
std::wstring GetModuleDirectory();

/// Converts a wide text to one byte per character. A null pointer is an empty text.
/// @throws std::bad_cast when the current locale of the runtime cannot convert the text.
std::string ToNarrowString(const wchar_t* text);

}  // namespace Quor::Velora::Infra::TsLogging
