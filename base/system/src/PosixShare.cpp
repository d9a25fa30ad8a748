#include <VeloraSystem/Share.h>

namespace Velora::System {

bool IsOnShare(const std::string& /*path*/) { return false; }

}  // namespace Velora::System
