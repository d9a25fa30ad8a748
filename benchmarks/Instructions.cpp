// instructions WAY EVENTS: records so many events, for a tool that counts instructions.

#include "EventTasks.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

template <typename Way>
void Record(int events) {
  const std::string event = "Exposure";
  for (Way way; events > 0; --events) {
    RecordEvent(way, event);
  }
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view way = count == 3 ? arguments[1] : "";
  if (way == "component") {
    Record<ComponentWay>(std::stoi(arguments[2]));
  } else if (way == "obvious") {
    Record<ObviousWay>(std::stoi(arguments[2]));
  } else {
    std::cerr << "expected 'component' or 'obvious', and how many events\n";
    return EXIT_FAILURE;
  }
}
