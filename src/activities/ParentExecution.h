#pragma once

#include <string>

namespace Quor::Velora::Infra::TsLogging {

/// Creates an execution and makes it the process-wide parent, under which executions without a given parent are
/// created. An exception leaves the parent set before.
/// @return the guid of the execution.
std::string CreateParentActivityExecution(const std::string& node);

}  // namespace Quor::Velora::Infra::TsLogging
