#pragma once

#include <VeloraLogFile/Line.h>
#include <VeloraLogFile/LineForm.h>
#include <VeloraSystem/RegularFile.h>
#include <VeloraSystem/System.h>

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Velora::LogFile {

/// Reads the lines of a log file once, in order. Keeps two lines in memory, however long the file and its lines are.
class LogFile {
 public:
  /// @param following whether the file is going to grow. If it is renamed and made anew, or emptied, the new one is
  /// followed.
  /// @throws std::runtime_error when the file cannot be opened.
  LogFile(std::string path, LineForm form, bool following);

  /// Goes to the next line of the form, and takes the lines after it that have no time. When `following`, there can be
  /// a next one later; lines without a time that come later are lines of their own then, with the time of the last one.
  /// @return whether there is one.
  /// @throws std::runtime_error when the file cannot be read, or none of its lines has the form.
  bool Next();
  const Line& Current() const { return current; }

 private:
  void Open();
  /// Reads a whole line into `raw`. @return whether there was one.
  bool ReadRaw();
  /// Reads bytes into the buffer. @return whether there were any.
  bool Fill();
  bool Read();
  /// Whether what was read last stands there no longer: the file was emptied, and can have grown again.
  bool IsRewritten();
  bool IsReplaced() const;
  bool ReadAhead();
  [[noreturn]] void Refuse(const std::string& reason) const;

  const std::string path;
  const LineForm form;
  const bool following;
  System::File file{nullptr, &std::fclose};
  System::FileId id;
  std::vector<char> buffer;
  std::string_view unread;  // of the buffer
  std::string last;         // what was read last of this file
  std::string raw;          // a line, its beginning if it is long, or a part of the last one
  bool complete = true;     // whether `raw` is a whole line
  bool ended = false;       // whether nothing comes after `raw` and what is unread
  long long number = 0;     // of lines so far
  std::string misfit;       // as long as no line has the form, number and text of the first one
  bool fits = false;        // whether any has
  Line current;
  std::optional<Line> ahead;
};

}  // namespace Velora::LogFile
