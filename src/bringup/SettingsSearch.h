#pragma once

#include <filesystem>
#include <string>

namespace Quor::Velora::Infra::TsLogging {

class TraceScope;

/// Where the TS settings file and the activities file lie, both of them.
enum class SettingsPlace { CurrentDirectory, DataRoot, Nowhere };

/// Looks in the current directory, then in the data root, and tells TS what came of it: the empty path, or the data
/// root. Found nowhere is an error line of the operation, and TS is told nothing. The second file of a place is asked
/// for only when the first is there; whatever has the name counts, a folder too. Raises when the file system fails for
/// another reason than absence.
SettingsPlace FindSettings(const TraceScope& scope, const std::filesystem::path& dataRoot,
                           const std::string& activitiesFile);

/// A file in that place: its name unchanged for the current directory, else joined with the data root.
std::string FileIn(SettingsPlace place, const std::filesystem::path& dataRoot, const std::string& file);

}  // namespace Quor::Velora::Infra::TsLogging
