#include "output/Shorten.h"

#include <VeloraText/Character.h>

#include <string_view>

namespace Velora::Ts {

bool Shorten(std::string& text, std::size_t longest) {
  std::size_t end = 0;
  for (std::size_t count = 0; count < longest && end < text.size(); ++count) {
    end += Text::Character(std::string_view(text).substr(end)).length;
  }
  const bool cut = end < text.size();
  text.resize(end);
  return cut;
}

}  // namespace Velora::Ts
