#pragma once

#include <string>
#include <vector>

class Store;

// What Soundness.h asks for, of a database on a server.

std::vector<std::string> PostgreSqlSchemaFindings(const Store& store);
std::vector<std::string> PostgreSqlDamageFindings(const Store& store);
