#pragma once

#include <string>

namespace Velora::Store {

/// A view, which saves a reader the joins: docs/local-ts.md.
struct View {
  std::string name;
  std::string definition;
  std::string onServer = "";  ///< Where a server is better asked otherwise.
};

namespace Views {

const View& ExecutionStates();
const View& Unfinished();
const View& Readings();
const View& DurationsOfVersion2();
const View& Durations();

}  // namespace Views

}  // namespace Velora::Store
