#pragma once

#include "Fuzz.h"

#include "store/Error.h"

#include <algorithm>
#include <string>

/// An attribute that is read as exactly this value.
inline std::string Attribute(const std::string& name, const std::string& value) {
  std::string text = " " + name + "=\"";
  for (const char c : value) {
    const auto byte = static_cast<unsigned char>(c);
    text += byte < ' ' || std::string("\"&<>").find(c) != std::string::npos ? "&#" + std::to_string(byte) + ';'
                                                                            : std::string(1, c);
  }
  return text + '"';
}

/// Reads what the fuzzer made up. What is refused is refused with file and line; what is accepted must read the same
/// when it is written again.
/// @param read takes a path and may raise a TsError.
/// @param written makes a file's content of what `read` returned.
template <typename Read, typename Written>
int ReadTwice(const std::string& name, const std::string& content, const Read& read, const Written& written) {
  const std::string file = InputFile(name, content);
  std::string once;
  try {
    once = written(read(file));
  } catch (const Velora::Store::Error& error) {
    const std::size_t line = LineIn(error.what(), "file '" + file + "', line ");
    Require(line >= 1 && line <= LinesOf(content), std::string("the file has that line: ") + error.what());
    return 0;
  }
  Require(written(read(InputFile(name, once))) == once, "what was read reads the same again: " + once);
  return 0;
}
