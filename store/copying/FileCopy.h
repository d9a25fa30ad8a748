#pragma once

#include <functional>
#include <string>

namespace Velora::Store {

class Reader;

/// @param target as the error says it.
/// @throws NotOffered for a store on a server, whose own tools copy it.
void ExpectFile(const Reader& store, const std::string& target);

/// Copies a store's file, as it is in the state that is read, into one that is there and empty.
/// @param copied called now and then with the pages that were copied so far.
void CopyFile(const Reader& store, const std::string& target, const std::function<void(long long pages)>& copied);

}  // namespace Velora::Store
