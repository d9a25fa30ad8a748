#pragma once

#include <VeloraLogFile/Line.h>
#include <VeloraSystem/RegularFile.h>

#include <string>

namespace Velora::LogFile {

/// Lines that are kept in a temporary file without a name, to be read later.
class SpooledLines {
 public:
  /// @throws std::runtime_error when there can be no such file; so do the other operations.
  SpooledLines();

  void Add(const Line& line);
  /// Goes to the next line, from the first one on. After the first call nothing can be added. @return whether there is
  /// one.
  bool Next();
  const Line& Current() const { return current; }

 private:
  struct Head;

  void Write(const void* bytes, std::size_t count);
  bool Read(void* bytes, std::size_t count);

  System::File file;
  bool reading = false;
  Line current;
};

}  // namespace Velora::LogFile
