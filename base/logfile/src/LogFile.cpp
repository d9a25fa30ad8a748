#include <VeloraLogFile/LogFile.h>

#include <VeloraText/Character.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace Velora::LogFile {

namespace {

constexpr std::size_t bufferSize = std::size_t{64} << 10U;
constexpr std::size_t longestRaw = 2 * Line::longestText;
constexpr std::size_t mostCompared = 256;  // one or two lines, of which each has its own time
constexpr std::string_view ellipsis = "\u2026";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// Cuts a text that is too long between two characters.
void CutToLongest(std::string& text) {
  if (text.size() <= Line::longestText) {
    return;
  }
  std::size_t kept = Line::longestText - ellipsis.size();
  const auto continues = [&](std::size_t at) { return (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80; };
  for (int bytes = 1; bytes < 4 && continues(kept); ++bytes) {
    --kept;
  }
  text.replace(kept, std::string::npos, ellipsis);
}

}  // namespace

LogFile::LogFile(std::string path, LineForm form, bool following)
    : path(std::move(path)), form(std::move(form)), following(following), buffer(bufferSize) {
  Open();
}

// The file can be replaced between the two questions; then it is asked again.
void LogFile::Open() {
  do {
    id = System::IdOf(path);
    try {
      file = System::OpenToRead(path);
    } catch (const System::Failure& failure) {
      Refuse(std::string("cannot be opened: ") + failure.what());
    }
  } while (following && !(System::IdOf(path) == id));
  last.clear();
}

bool LogFile::Next() {
  if (!ahead && !ReadAhead()) {
    return false;
  }
  current = std::move(*ahead);
  ahead.reset();
  while (ReadRaw()) {
    Line next;
    if (form.Read(raw, next)) {
      ahead = std::move(next);
      break;
    }
    if (current.text.size() <= Line::longestText) {
      current.text += '\n' + raw;
    }
  }
  CutToLongest(current.text);
  return true;
}

bool LogFile::ReadAhead() {
  while (ReadRaw()) {
    Line line;
    if (form.Read(raw, line)) {
      fits = true;
    } else if (fits) {
      line = current;
      line.text = raw;
    } else {
      misfit = misfit.empty() && !raw.empty() ? std::to_string(number) + " is '" + raw.substr(0, 100) + '\'' : misfit;
      continue;
    }
    ahead = std::move(line);
    return true;
  }
  if (!fits && !misfit.empty()) {
    Refuse("has no line of the form '" + form.InWords() + "'; line " + misfit);
  }
  return false;
}

bool LogFile::ReadRaw() {
  if (complete) {
    raw.clear();
  }
  for (complete = false; !complete;) {
    if (unread.empty() && !Fill()) {
      complete = ended && !raw.empty();
      ended = ended && !following;
      break;
    }
    const std::size_t end = std::min(unread.find('\n'), unread.size());
    raw += unread.substr(0, std::min(end, longestRaw - raw.size()));
    complete = end < unread.size();
    unread.remove_prefix(complete ? end + 1 : end);
  }
  if (complete && raw.ends_with('\r')) {
    raw.pop_back();
  }
  number += complete ? 1 : 0;
  return complete;
}

bool LogFile::Fill() {
  const bool rewritten = !ended && IsRewritten();
  if (ended || (!rewritten && Read())) {
    return !ended;
  }
  if (!following) {
    ended = true;
  } else if (rewritten || (IsReplaced() && !Read())) {  // nothing more was written to the old one before
    Open();
    ended = true;  // the last line of the old one
  }
  return !unread.empty();
}

bool LogFile::Read() {
  std::clearerr(file.get());
  unread = {buffer.data(), std::fread(buffer.data(), 1, buffer.size(), file.get())};
  if (std::ferror(file.get()) != 0) {
    Refuse("cannot be read: " + std::generic_category().message(errno));
  }
  if (last.empty() && unread.starts_with(byteOrderMark)) {
    unread.remove_prefix(byteOrderMark.size());
  }
  last += unread.substr(unread.size() - std::min(unread.size(), mostCompared));
  last.erase(0, last.size() - std::min(last.size(), mostCompared));
  return !unread.empty();
}

bool LogFile::IsRewritten() {
  if (!following || last.empty() || std::fseek(file.get(), -static_cast<long>(last.size()), SEEK_CUR) != 0) {
    return false;  // a pipe cannot be read twice
  }
  std::string now(last.size(), '\0');
  now.resize(std::fread(now.data(), 1, now.size(), file.get()));
  return now != last;
}

bool LogFile::IsReplaced() const {
  const System::FileId now = System::IdOf(path);
  return !(now == id) && !(now == System::FileId());
}

void LogFile::Refuse(const std::string& reason) const { throw std::runtime_error("log file '" + path + "' " + reason); }

}  // namespace Velora::LogFile
