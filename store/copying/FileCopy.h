#pragma once

#include <functional>
#include <string>

namespace Velora::Store {

class Reader;

/// Expects a store in a file, which CopyFile() can copy.
/// @param target the file to write, for the error.
/// @throws NotOffered for a store on a server; the error names the server's own tools.
void ExpectFile(const Reader& store, const std::string& target);

/// Copies the state of a store that is being read into a file.
/// @param target an empty file.
/// @param copied is called from time to time with the number of pages copied so far.
void CopyFile(const Reader& store, const std::string& target, const std::function<void(long long pages)>& copied);

}  // namespace Velora::Store
