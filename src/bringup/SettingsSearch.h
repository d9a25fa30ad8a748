#pragma once

#include <filesystem>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

class TraceScope;

/// The folder that has both the TS settings file and the activities file.
enum class SettingsPlace { CurrentDirectory, DataRoot, Nowhere };

/// Searches both files in the current directory, then in the data root, and sets the path in TS: the empty path for the
/// current directory, or the data root. If neither folder has both, it writes an error line of the operation and does
/// not call TS. The second file is searched only where the first one exists. A folder of that name counts as a file.
/// @throws std::filesystem::filesystem_error when the file system cannot say whether a file exists.
SettingsPlace FindSettings(const TraceScope& scope, const std::filesystem::path& dataRoot,
                           const std::string& activitiesFile);

/// The path of a file in that place: the unchanged name for the current directory, otherwise joined with the data root.
std::string FileIn(SettingsPlace place, const std::filesystem::path& dataRoot, const std::string& file);

}  // namespace Quor::Velora::Infra::TsLogging
