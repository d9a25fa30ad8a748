#pragma once

#include <string>

namespace Velora::Store {

/// A view, which spares readers the joins: docs/local-ts.md.
struct View {
  std::string name;
  std::string definition;
  std::string onServer = "";  ///< Another definition for a server; empty if it is the same.
};

namespace Views {

const View& ExecutionStates();
const View& UnfinishedOfVersion1();
const View& Unfinished();
const View& Readings();
const View& DurationsOfVersion2();
const View& Durations();

}  // namespace Views

}  // namespace Velora::Store
