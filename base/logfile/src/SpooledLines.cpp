#include <VeloraLogFile/SpooledLines.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <system_error>

namespace Velora::LogFile {

namespace {

[[noreturn]] void Refuse(const std::string& reason) {
  throw std::runtime_error("lines of a log cannot be kept in a temporary file: " + reason);
}

void Expect(bool good) {
  if (!good) {
    Refuse(std::generic_category().message(errno));
  }
}

}  // namespace

struct SpooledLines::Head {
  long long at;
  Level level;
  std::size_t source, text;  // their lengths
};

SpooledLines::SpooledLines() try : file(System::OpenTemporary()) {
} catch (const System::Failure& failure) {
  Refuse(failure.what());
}

void SpooledLines::Add(const Line& line) {
  const Head head{line.at, line.level, line.source.size(), line.text.size()};
  Write(&head, sizeof head);
  Write(line.source.data(), line.source.size());
  Write(line.text.data(), line.text.size());
}

bool SpooledLines::Next() {
  if (!reading) {
    Expect(std::fseek(file.get(), 0, SEEK_SET) == 0);
    reading = true;
  }
  Head head{};
  if (!Read(&head, sizeof head)) {
    return false;
  }
  current.at = head.at;
  current.level = head.level;
  current.source.resize(head.source);
  current.text.resize(head.text);
  Expect(Read(current.source.data(), head.source) && Read(current.text.data(), head.text));
  return true;
}

void SpooledLines::Write(const void* bytes, std::size_t count) {
  Expect(std::fwrite(bytes, 1, count, file.get()) == count);
}

bool SpooledLines::Read(void* bytes, std::size_t count) {
  const bool whole = std::fread(bytes, 1, count, file.get()) == count;
  Expect(std::ferror(file.get()) == 0);
  return whole;
}

}  // namespace Velora::LogFile
