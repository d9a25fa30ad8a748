#pragma once

#include <string>

namespace Velora::Store {

class Reader;
struct Run;

}  // namespace Velora::Store

namespace Velora::Page {

/// Appends whether the hosts of a run live, as the member `hosts` of the page's data.
/// @param start the time from which times are counted, in microseconds since 1970.
void AppendHosts(std::string& json, const Store::Reader& store, const Store::Run& run, long long start);

}  // namespace Velora::Page
