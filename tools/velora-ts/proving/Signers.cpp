#include "proving/Signers.h"

#include "proving/SshKey.h"

#include "store/record/Base64.h"
#include "store/settings/WholeFile.h"
#include "store/values/StoredTime.h"

#include "store/Error.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Velora::Ts {

using namespace Store;

namespace {

constexpr std::uintmax_t largestSigners = 1 << 20;
constexpr std::string_view withdrawn = "withdrawn", validBefore = "valid-before", namespaces = "namespaces";

/// The words of a line. A space between quotes does not end a word.
std::vector<std::string_view> WordsOf(std::string_view line) {
  std::vector<std::string_view> words;
  bool isQuoted = false;
  std::size_t begin = 0;
  for (std::size_t at = 0; at <= line.size(); ++at) {
    const bool isGap = at == line.size() || ((line[at] == ' ' || line[at] == '\t') && !isQuoted);
    isQuoted = at < line.size() && line[at] == '"' ? !isQuoted : isQuoted;
    if (isGap) {
      if (at > begin) {
        words.push_back(line.substr(begin, at - begin));
      }
      begin = at + 1;
    }
  }
  return words;
}

/// The stored form of a time that is whole to the second, such as "2026-11-27T10:00:00Z"; nothing for another text.
std::optional<std::string> TimeIn(std::string text) {
  if (text.size() == 20 && text.back() == 'Z') {
    text.insert(text.size() - 1, ".000000");
  }
  return text.size() == 27 && Microseconds(text) ? std::optional(std::move(text)) : std::nullopt;
}

/// The stored form of OpenSSH's "20261127", "202611271000" or "20261127100000", with a Z: local times differ by place.
std::optional<std::string> SshTimeIn(std::string_view text) {
  if (!text.ends_with('Z')) {
    return std::nullopt;
  }
  std::string digits(text.substr(0, text.size() - 1));
  if ((digits.size() != 8 && digits.size() != 12 && digits.size() != 14) ||
      digits.find_first_not_of("0123456789") != std::string::npos) {
    return std::nullopt;
  }
  digits.resize(14, '0');
  return TimeIn(digits.substr(0, 4) + '-' + digits.substr(4, 2) + '-' + digits.substr(6, 2) + 'T' +
                digits.substr(8, 2) + ':' + digits.substr(10, 2) + ':' + digits.substr(12, 2) + 'Z');
}

void ExpectLine(bool isRight) {
  if (!isRight) {
    throw Error(
        "expected NAME+ID+KEY, with 'withdrawn 2026-11-27T10:00:00Z' behind it if it is, or a line of an allowed "
        "signers file of OpenSSH with no other options than valid-before=\"20261127Z\" and namespaces=\"velora-ts\"");
  }
}

/// Takes the options of a line of OpenSSH: when the key is withdrawn, and whether it is for other purposes.
/// @throws Error when one is not known, or is there twice.
void TakeOptions(std::string_view options, Signer& signer, bool& isForSeals) {
  std::set<std::string_view> names;
  while (!options.empty()) {
    const std::size_t equals = options.find("=\""), begin = equals + 2, end = options.find('"', begin);
    const std::string_view name = options.substr(0, equals);
    ExpectLine(name == validBefore || name == namespaces);  // not such as cert-authority, which nothing here checks
    ExpectLine(end != std::string_view::npos && (end + 1 == options.size() || options[end + 1] == ','));
    if (!names.insert(name).second) {
      throw Error("the option " + std::string(name) + " is there twice; expected it once");
    }
    const std::string value(options.substr(begin, end - begin));
    if (name == validBefore) {
      const std::optional<std::string> time = SshTimeIn(value);
      ExpectLine(time.has_value());
      signer.until = *time;
    } else {
      isForSeals = (',' + value + ',').find(std::string(",") + sshNamespace + ',') != std::string::npos;
    }
    options.remove_prefix(std::min(end + 2, options.size()));
  }
}

/// What tells a key of SSH from all others. A key of Ed25519 can stand in a line of either form.
std::string BytesOfSsh(const std::string& key) {
  SshReader reader(key);
  return reader.String() == "ssh-ed25519" ? std::string(reader.String()) : key;
}

/// @param key bytes that are those of no other key.
void ExpectNew(const std::string& key, int number, std::map<std::string, int>& lines) {
  if (const auto [first, isNew] = lines.emplace(key, number); !isNew) {
    throw Error("the key of line " + std::to_string(first->second) +
                " is there again; expected one line for each key, with the time from which on it is withdrawn, if it "
                "is");
  }
}

}  // namespace

Signers::Signers(const std::string& file) {
  const std::string text = ReadWholeFile(file, largestSigners);
  Lines lines;
  int number = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    ++number;
    if (line.find_first_not_of(" \t") == std::string_view::npos || line.starts_with('#')) {
      continue;
    }
    try {
      Take(line, number, lines);
    } catch (const Error& error) {
      throw Error("file '" + file + "', line " + std::to_string(number) + ": " + error.what());
    }
  }
}

void Signers::Take(std::string_view line, int number, Lines& lines) {
  const std::vector<std::string_view> words = WordsOf(line);
  const std::optional<NoteKey> key = NoteKey::In(words.front());
  if (!key) {
    TakeOfSsh(words, number, lines);
    return;
  }
  const bool isWithdrawn = words.size() == 3 && words[1] == withdrawn;
  const std::optional<std::string> until = isWithdrawn ? TimeIn(std::string(words[2])) : std::optional<std::string>("");
  ExpectLine(until && (words.size() == 1 || isWithdrawn));
  ExpectNew(key->PublicKey(), number, lines);
  ofNotes.push_back({*key, {key->Name(), *until}});
}

void Signers::TakeOfSsh(const std::vector<std::string_view>& words, int number, Lines& lines) {
  std::size_t type = 1;
  Signer signer{std::string(words.front())};
  bool isForSeals = true;
  if (words.size() > 3 && words[1].find('=') != std::string_view::npos) {
    TakeOptions(words[1], signer, isForSeals);
    type = 2;
  }
  const std::optional<std::string> key = words.size() > type + 1 ? FromBase64(words[type + 1]) : std::nullopt;
  ExpectLine(key && SshReader(*key).String() == words[type]);
  if (isForSeals) {
    ExpectSupported(words[type]);
    ExpectNew(BytesOfSsh(*key), number, lines);
    ofSsh.push_back({*key, signer});
  }
}

std::optional<Signer> Signers::Of(std::string_view text, const NoteSignature& signature) const {
  for (const OfNotes& one : ofNotes) {
    if (one.key.Signed(text, signature)) {
      return one.signer;
    }
  }
  return std::nullopt;
}

std::optional<Signer> Signers::Of(std::string_view text, const SshSignature& signature) const {
  for (const OfSsh& one : ofSsh) {
    if (one.publicKey == signature.publicKey && Signed(text, signature)) {
      return one.signer;
    }
  }
  return std::nullopt;
}

bool Signers::HasKeyOf(const NoteSignature& signature) const {
  return std::any_of(ofNotes.begin(), ofNotes.end(), [&](const OfNotes& one) { return one.key.IsNamedBy(signature); });
}

}  // namespace Velora::Ts
