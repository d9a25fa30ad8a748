#pragma once

#include <string>
#include <vector>

class Store;

// What Soundness.h asks for, of a file.

std::vector<std::string> SqliteSchemaFindings(const Store& store);
std::vector<std::string> SqliteDamageFindings(const Store& store);
