#include "output/Json.h"

namespace Velora::Ts {

void AppendBlob(std::string& json, std::string_view bytes) {
  json += "{\"blob\":\"";
  for (const char byte : bytes) {
    AppendHex(json, byte);
  }
  json += "\"}";
}

}  // namespace Velora::Ts
