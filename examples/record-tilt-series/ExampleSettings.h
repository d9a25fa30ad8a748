#pragma once

#include <array>
#include <string_view>

/// A file that a data folder needs, with its content in this example.
struct ExampleFile {
  const char* name;
  std::string_view content;
};

extern const std::array<ExampleFile, 3> exampleFiles;

inline constexpr const char* instrumentConfigFile = "instrument.xml";
