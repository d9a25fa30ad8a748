#pragma once

#include <filesystem>

/// Makes a folder the current directory and the place of the record: makes it where it is missing, and puts there what
/// it lacks of the settings, from the example's own. Files that are there stay as they are.
/// @throws std::runtime_error or std::filesystem::filesystem_error naming what could not be made.
void EnterDataFolder(const std::filesystem::path& folder);
