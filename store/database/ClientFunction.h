#pragma once

namespace Velora::Store {

/// A function of PostgreSQL's client library, which is loaded first where it is not yet. It stays loaded.
/// @throws NotReachable when there is no such library, or not with this function.
void* FindClientFunction(const char* name);

}  // namespace Velora::Store
