#include "output/Json.h"

void AppendBlob(std::string& json, std::string_view bytes) {
  json += "{\"blob\":\"";
  for (const char byte : bytes) {
    AppendHex(json, byte);
  }
  json += "\"}";
}
