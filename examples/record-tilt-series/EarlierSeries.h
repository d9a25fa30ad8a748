#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The description of a series: its file, and a number that its content has, so that it is recognized when it is
/// recorded again.
std::string DescriptionOf(const std::filesystem::path& file);

/// Says on standard error which files are there already: as a series with the same name and description. The component
/// reads nothing back, so the tool velora-ts beside this program is asked. If it is not there, or cannot read the
/// records, nothing is said.
void SayWhatIsThere(const std::vector<std::filesystem::path>& files);
