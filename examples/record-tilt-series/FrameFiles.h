#pragma once

#include <filesystem>
#include <string>

/// Whether the file of frames that a section names is on this computer: at the path that was written at the microscope
/// (a relative path begins at the folder of the .mdoc file), or with its name in that folder.
bool FramesOnDisk(const std::string& subFramePath, const std::filesystem::path& folder);
