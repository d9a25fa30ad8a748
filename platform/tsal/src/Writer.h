#pragma once

#include <string>

namespace Quor::TolvaServices::Local {

/// Who is writing into a store at this moment, in words: "process 4711 (recorder)", "another thread of this process",
/// or, where the system does not tell, "another process or thread".
std::string WriterOf(const std::string& database);

}  // namespace Quor::TolvaServices::Local
