#pragma once

#include <memory>
#include <string>
#include <utility>

namespace Quor::Velora::Infra::TsLogging {

/// The data that all scopes of the process share.
struct TraceSource {
  explicit TraceSource(std::wstring sourceName) : name(std::move(sourceName)) {}

  const std::wstring name;  // the source of every line
};

using SharedSource = std::shared_ptr<TraceSource>;

}  // namespace Quor::Velora::Infra::TsLogging
