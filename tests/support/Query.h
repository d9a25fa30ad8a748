#pragma once

#include <filesystem>
#include <string>

namespace Velora::Store {
class Connection;
}

/// What a query answers, as a person would read it: cells joined by '|', rows ended by '\n'.
std::string Query(Velora::Store::Connection& sql, const std::string& statement);
std::string Query(const std::filesystem::path& database, const std::string& statement);
