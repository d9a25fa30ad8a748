#include "store/Error.h"

#include <VeloraText/Printable.h>

namespace Velora::Store {

Error::Error(const std::string& what) : std::runtime_error(Text::WithVisibleZeros(what)) {}

}  // namespace Velora::Store
