#pragma once

#include <filesystem>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Where the TS settings file and the activities file lie, both of them.
enum class SettingsPlace { CurrentDirectory, DataRoot, Nowhere };

/// Looks in the current directory, then in the data root. The second file of a place is asked for only when the first
/// is there; whatever has the name counts, a folder too. Raises when the file system fails for another reason than
/// absence.
SettingsPlace FindSettings(const std::filesystem::path& dataRoot, const std::string& activitiesFile);

/// What TS is told of a place where the settings are: the empty path for the current directory.
std::string TsalPathOf(SettingsPlace place, const std::filesystem::path& dataRoot);

/// A file in that place: its name unchanged for the current directory, else joined with the data root.
std::string FileIn(SettingsPlace place, const std::filesystem::path& dataRoot, const std::string& file);

/// The error line for a search that found them nowhere.
inline constexpr const char* settingsNotFound =
    "Cannot load TSAL.config file.Please ensure it exists in the correct directory";

}  // namespace Quor::Velora::Infra::TsLogging
