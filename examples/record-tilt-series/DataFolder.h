#pragma once

#include <filesystem>

/// Makes a folder the current directory and the place of the records. Makes the folder if it does not exist, and adds
/// the settings of the example that it lacks. Existing files stay unchanged.
/// @throws std::runtime_error or std::filesystem::filesystem_error if something cannot be made, with its name.
void EnterDataFolder(const std::filesystem::path& folder);
