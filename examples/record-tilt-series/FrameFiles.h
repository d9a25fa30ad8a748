#pragma once

#include <filesystem>
#include <string>

/// Whether the file of frames that a section names lies on this computer: under the path as it was written at the
/// microscope (a relative one starts in the folder of the .mdoc file), or under its bare name in that folder.
bool FramesOnDisk(const std::string& subFramePath, const std::filesystem::path& folder);
