// save-instructions WAY TIMES: records so many times, for a tool that counts instructions. "host" saves an event
// through the exported surface, "raw" stores the same rows through SQLite's own interface, and "start" starts the host
// anew.

#include "RawStore.h"
#include "RecordingHost.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

int main(int count, char** arguments) try {
  const std::string_view way = count == 3 ? arguments[1] : "";
  if (way != "host" && way != "raw" && way != "start") {
    std::cerr << "expected 'host', 'raw' or 'start', and how many times\n";
    return EXIT_FAILURE;
  }
  RecordingHost host;
  RawStore raw(host.Store().string());
  for (int times = std::stoi(arguments[2]); times > 0; --times) {
    way == "host" ? host.SaveEvent() : way == "raw" ? raw.SaveEvent() : host.Start();
  }
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return EXIT_FAILURE;
}
