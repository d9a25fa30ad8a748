#pragma once

#include <string>

namespace Quor::Velora::Infra::Logging {

/// "[SOURCE] MESSAGE" as one line: line breaks and other control characters of either are shown escaped, so that no
/// text can look like another line. Every other byte passes as it is; the source is written in UTF-8.
std::string LineText(const std::wstring& source, const std::string& message);

/// A source in UTF-8, as it is.
std::string SourceText(const std::wstring& source);

}  // namespace Quor::Velora::Infra::Logging
