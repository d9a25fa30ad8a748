// save-instructions WAY SAVES: stores an event so many times, for a tool that counts instructions. "host" saves it
// through the exported surface, "raw" stores the same rows through SQLite's own interface.

#include "RawStore.h"
#include "RecordingHost.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

int main(int count, char** arguments) try {
  const std::string_view way = count == 3 ? arguments[1] : "";
  if (way != "host" && way != "raw") {
    std::cerr << "expected 'host' or 'raw', and how many saves\n";
    return EXIT_FAILURE;
  }
  const RecordingHost host;
  RawStore raw(host.Store().string());
  for (int saves = std::stoi(arguments[2]); saves > 0; --saves) {
    way == "host" ? host.SaveEvent() : raw.SaveEvent();
  }
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return EXIT_FAILURE;
}
