#pragma once

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Creates the execution that later ones without a parent of their own become children of, and makes it the process's
/// parent. A raise leaves the parent set before.
/// @return its guid.
std::string CreateParentActivityExecution(const std::string& node);

}  // namespace Quor::Velora::Infra::TsLogging
