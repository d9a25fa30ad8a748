#pragma once

#include <span>

namespace Velora::Ts {

/// openapi.json: what the paths below /api answer, in the form OpenAPI 3.0.
extern const std::span<const char> openApiDocument;

}  // namespace Velora::Ts
