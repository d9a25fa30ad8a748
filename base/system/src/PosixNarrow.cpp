#include <VeloraSystem/Narrow.h>

namespace Velora::System {

std::string FromNarrow(const std::string& path) { return path; }

bool IsNarrow(const std::string& /*path*/) { return true; }

}  // namespace Velora::System
