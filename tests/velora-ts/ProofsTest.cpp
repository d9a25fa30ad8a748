// Signatures, time stamps and proofs, as somebody meets them who has other programs and no store.

#include "ToolTest.h"
#include "proving/NoteKey.h"
#include "proving/ProofFile.h"
#include "proving/SshKey.h"
#include "proving/SshSignature.h"
#include "store/Error.h"
#include "store/record/Base64.h"
#include "store/record/Merkle.h"
#include "support/Patterns.h"

#include <openssl/pkcs7.h>
#include <openssl/x509.h>

#include <regex>
#include <tuple>

namespace {

using namespace Velora;
using namespace Velora::Ts;

constexpr const char* passphrase = "seven grey herons";

class Proofs : public ToolTest {
 protected:
  Proofs() {
    BringUp();
    EXPECT_EQ(Shell(SOURCE "/tests/velora-ts/authority make"), 0) << said;
    MakeKey("ines");
  }

  void MakeKey(const std::string& name, const std::string& options = "") {
    EXPECT_EQ(Shell("openssl genpkey -algorithm ed25519 " + options + " -out " + name + ".pem"), 0) << said;
  }

  /// Seals and signs. @return the public key.
  std::string Sign(const std::string& name) {
    EXPECT_EQ(Tool("seal --key " + name + ".pem --signer " + name), 0) << said;
    return KeyOf(name);
  }

  /// The public key that seal said.
  std::string KeyOf(const std::string& name) const {
    std::smatch key;
    return std::regex_search(said, key, std::regex("by (" + name + "\\+\\S+)")) ? key[1].str() : said;
  }

  void SignBySsh(const std::string& name) {
    EXPECT_EQ(Shell("ssh-keygen -q -t ed25519 -N '' -f " + name), 0) << said;
    EXPECT_EQ(Tool("seal --checkpoint theirs"), 0) << said;
    EXPECT_EQ(Shell("ssh-keygen -Y sign -f " + name + " -n velora-ts theirs"), 0) << said;
    EXPECT_EQ(Tool("seal --signature theirs.sig"), 0) << said;
    EXPECT_EQ(Shell("echo \"" + name + " $(cut -d ' ' -f 1,2 " + name + ".pub)\" >allowed_signers"), 0);
  }

  void Stamp() {
    EXPECT_EQ(Tool("seal --timestamp-query query.tsq"), 0) << said;
    EXPECT_EQ(Shell(SOURCE "/tests/velora-ts/authority answer query.tsq answer.tsr"), 0) << said;
    EXPECT_EQ(Tool("seal --timestamp answer.tsr"), 0) << said;
  }

  /// Adds a finished run, as a host does.
  void Record(int number) {
    const std::string n = std::to_string(number);
    EXPECT_EQ(Shell("sqlite3 ts.db \"INSERT INTO executions VALUES (" + n + ", 'run-" + n + "', NULL, " + n +
                    ", 1, 1, 'more', '', 5, '2026-11-27T09'); INSERT INTO statuses VALUES (" + n + ", " + n +
                    ", 1, 14, '2026-11-27T10')\""),
              0)
        << said;
  }
};

/// The blocks of a language in a part of a page of docs.
std::string BlocksOf(const std::string& language, const std::string& part) {
  const std::string page = ContentOf(SOURCE "/docs/proofs.md");
  const std::size_t begin = page.find("## " + part);
  std::string rest = page.substr(begin, page.find("\n## ", begin) - begin), blocks;
  const std::regex block("```" + language + "\n([^`]*(?:`[^`]+)*?)```");
  for (std::smatch found; std::regex_search(rest, found, block); rest = found.suffix()) {
    blocks += found[1];
  }
  return blocks;
}

/// A proof with another record, and with a checkpoint for it between the hashes and the one that was signed. A reader
/// who takes "\r\n" for the end of a line finds the first, others the second.
std::string Forged(const std::string& whole) {
  Proof proof = ProofsIn(whole, "focus.proof").front();
  proof.record.insert(1, "\"forged\":true,");
  Store::TreeHasher hasher;
  Checkpoint& made = proof.evidence.checkpoint;
  made.root = Store::RootBy(proof.path, hasher.OfLeaf(proof.record), proof.index, made.size).value_or("");
  const std::string text = proof.Text();
  return text.substr(0, text.find("\n\n") + 1) + "\r\n" + made.Text() + whole.substr(whole.find("\n\n") + 1);
}

TEST_F(Proofs, AreCheckedByTheProgramsOfOthersAsTheDocsSay) {
  const std::string key = Sign("ines");
  Stamp();
  SignBySsh("dana");
  folder.Write("ines.key", key + '\n');
  folder.Write("signers", "# those who sign\n" + key + '\n' + ContentOf(folder / "allowed_signers"));
  folder.Write("check.py", BlocksOf("python", "Checking without"));
  folder.Write("check.sh", BlocksOf("sh", "Checking without"));
  const struct {
    std::string record, content;
  } rows[] = {{"2", "^\\{\"record\":\"event\",\"number\":2,"}, {"last", "^\\{\"record\":\"seal\",\"number\":2,"}};
  for (const auto& [record, content] : rows) {
    SCOPED_TRACE(record);
    ASSERT_EQ(Tool("prove " + record + " -o focus.proof"), 0) << said;
    EXPECT_EQ(Shell("bash -euo pipefail check.sh"), 0) << said;
    for (const char* const line : {"Signature Verified Successfully", "Good \"velora-ts\" signature for dana",
                                   "Verification: OK", "Time stamp: "}) {
      EXPECT_TRUE(Says(line)) << said;
    }
    EXPECT_TRUE(Says("the record is leaf ")) << said;
    const std::string whole = ContentOf(folder / "focus.proof");
    EXPECT_TRUE(HasMatch(whole, content));
    EXPECT_EQ(Tool("prove --check focus.proof --signers signers --tsa authority.pem"), 0) << said;
    EXPECT_TRUE(HasMatch(said,
                         "signed by ines\n.*signed by dana\n.*existed at .*, with the signature of ines\n"
                         "1 proofs checked: 0 findings, 0 not signed"))
        << said;
    EXPECT_EQ(Shell("sed -i '1s/:2,/:3,/' focus.proof"), 0);
    EXPECT_EQ(Tool("prove --check focus.proof --signers signers"), 1);
    for (const std::string& other : {ContentOf(folder / "focus.proof"), Forged(whole)}) {
      folder.Write("focus.proof", other);
      EXPECT_EQ(Shell("bash -euo pipefail check.sh"), 1) << said;
      EXPECT_TRUE(Says("Signature Verified Successfully") && Says("Verification: OK") && Says("checkpoint\n")) << said;
    }
  }
  EXPECT_EQ(Tool("export last"), 0);
  EXPECT_EQ(Tool("verify --signers signers --tsa authority.pem"), 0) << said;
}

/// What a proof shows: its record, who signed, and since when it exists.
auto Shown(const Proof& proof, const Signers& signers, const Authorities& authorities) {
  const Judgement judgement = Judge(proof.evidence, &signers, &authorities);
  return std::tuple(judgement.findings.size(), judgement.signers, judgement.times);
}

TEST_F(Proofs, NoByteOfOneCanBeChanged) {
  const std::string key = Sign("ines");
  Stamp();
  SignBySsh("dana");
  folder.Write("signers", key + '\n' + ContentOf(folder / "allowed_signers"));
  ASSERT_EQ(Tool("prove 2 -o focus.proof"), 0) << said;
  const std::string whole = ContentOf(folder / "focus.proof");
  const Signers signers((folder / "signers").string());
  const Authorities authorities((folder / "authority.pem").string());
  const std::vector<Proof> proofs = ProofsIn(whole, "focus.proof");
  const auto shown = Shown(proofs.front(), signers, authorities);
  EXPECT_EQ(shown, std::tuple(0U, std::vector<std::string>{"ines", "dana"}, std::get<2>(shown)));
  EXPECT_EQ(std::get<2>(shown).size(), 1U);
  int refused = 0, unproved = 0, lessShown = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const int bit : {1, 4, 32}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ bit);
      try {
        const std::vector<Proof> read = ProofsIn(changed, "focus.proof");
        if (read.size() != 1 || !read.front().HasRecord()) {
          ++unproved;
          continue;
        }
        EXPECT_NE(Shown(read.front(), signers, authorities), shown) << at << ' ' << changed.substr(at, 20);
        ++lessShown;
      } catch (const Store::Error&) {
        ++refused;
      }
    }
  }
  std::printf("%d changes refused, %d lead to no record, %d show less\n", refused, unproved, lessShown);
  EXPECT_TRUE(refused > 0 && unproved > 0 && lessShown > 0);
}

TEST_F(Proofs, OutliveAKeyThatIsLostOrStolen) {
  const std::string lost = Sign("ines");
  Stamp();
  MakeKey("bo");
  Record(20);
  const std::string next = Sign("bo");
  const struct {
    std::string signers, options, found;
    int code;
  } rows[] = {
      {lost, "", "not signed by who is believed: no seal behind seal 2", 4},
      {lost + '\n' + next, "", "seal 4 and all before it: signed by bo", 0},
      {next, "", "signature 1 is by a key of ines that the signers do not have", 0},
      {lost + " withdrawn 2099-01-01T00:00:00Z", "", "and no time stamp shows that it is older", 4},
      {lost + " withdrawn 2099-01-01T00:00:00Z", "--tsa authority.pem", "signed by ines, whose key was withdrawn later",
       4},
      {lost + " withdrawn 2026-01-01T00:00:00Z", "--tsa authority.pem", "and no time stamp shows that it is older", 4},
      {lost + " withdrawn 2026-01-01T00:00:00Z\n" + next, "--tsa authority.pem", "signed by bo", 0},
      {lost + '\n' + next, "--tsa stamps.pem", "by an authority that --tsa does not have: CN=Clockhouse stamps", 4},
      {lost + '\n' + next, "--tsa stamps.pem", "not dated by who is believed: no seal\n", 4},
  };
  for (const auto& [signers, options, found, code] : rows) {
    SCOPED_TRACE(signers + options);
    folder.Write("signers", signers + '\n');
    EXPECT_EQ(Tool("verify --signers signers " + options), code) << said;
    EXPECT_TRUE(Says(found)) << said;
  }
  EXPECT_EQ(Tool("verify"), 0) << said;
  EXPECT_TRUE(Says("2 signatures are not compared: --signers names nobody")) << said;
}

TEST_F(Proofs, AreRefusedInWordsThatRepeatNoSecret) {
  MakeKey("locked", std::string("-aes256 -pass 'pass:") + passphrase + "'");
  EXPECT_EQ(
      Shell("openssl genpkey -algorithm x25519 -out other.pem; echo wrong >wrong; : >empty; (cat authority.pem; sed "
            "'3s/./!/' authority.pem; cat authority.pem) >broken.pem; sed '1a Proc-Type: 4,ENCRYPTED\\nDEK-Info: "
            "AES-256-CBC,00112233445566778899AABBCCDDEEFF\\n' authority.pem >encrypted.pem"),
      0);
  folder.Write("right", std::string(passphrase) + "\nsecond line\n");
  folder.Write("bad-signers", "# one\nines\n");
  EXPECT_EQ(Shell("ssh-keygen -q -t ed25519 -N '' -f dana; echo x >other; ssh-keygen -Y sign -q -f dana -n velora-ts "
                  "other; ssh-keygen -Y sign -q -f dana -n files empty"),
            0)
      << said;
  const struct {
    std::string command, found;
    int code = 3;
  } rows[] = {
      {"prove 2 -o a.proof", "is not sealed; expected velora-ts seal first"},
      {"seal --key ines.pem", "--signer", 2},
      {"seal --key ines.pem --signer 'seven grey herons'", "--signer: expected a name in ASCII, without spaces", 2},
      {"seal --key \"$(cat ines.pem)\" --signer ines", "the file of --key cannot be read; expected the name"},
      {"seal --key other.pem --signer ines", "'other.pem' has no private key of Ed25519"},
      {"seal --key locked.pem --signer ines </dev/null", "expected a terminal, or --passphrase-file FILE"},
      {"seal --key locked.pem --signer ines --passphrase-file wrong", "cannot be decrypted with this passphrase"},
      {"seal --key ines.pem --signer ines --signature other.sig", "excludes", 2},
      {"seal --key locked.pem --signer ines --passphrase-file 'seven grey herons'", "of --passphrase-file cannot be"},
      {"seal --key locked.pem --signer ines --passphrase-file right", "signed: seal 2 and all before it, by ines+", 0},
      {"seal --key locked.pem --signer ines --passphrase-file right", "signed already: seal 2", 0},
      {"prove 99 -o a.proof", "there is no event 99"},
      {"prove 2", "-o", 2},
      {"seal --signature other.sig", "is a signature of no seal of this store"},
      {"seal --signature empty.sig", "is a signature of no seal of this store"},
      {"seal --signature other", "is no signature"},
      {"seal --timestamp other", "has no time stamp"},
      {"verify --signers bad-signers", "'bad-signers', line 2: expected NAME+ID+KEY"},
      {"verify --tsa ines.pem", "'ines.pem' has no certificate"},
      {"verify --tsa broken.pem", "certificate 2 in file 'broken.pem' cannot be read"},
      {"verify --tsa encrypted.pem", "certificate 1 in file 'encrypted.pem' cannot be read"},
      {"prove --check other --signers bad-signers", "line 2"},
  };
  for (const auto& [command, found, code] : rows) {
    SCOPED_TRACE(command);
    EXPECT_EQ(Shell("setsid -w velora-ts " + command), code) << said;
    EXPECT_TRUE(Says(found)) << said;
    EXPECT_FALSE(Says("herons") || Says("PRIVATE")) << said;
  }
  EXPECT_EQ(Query(folder / "ts.db", "SELECT COUNT(*) FROM signatures"), "1\n");
}

/// The form in which OpenSSH writes a text, and texts, into keys and signatures.
std::string SshString(const std::string& text) {
  return {std::string(3, '\0') + static_cast<char>(text.size()) + text};
}

std::string SshKey(const std::string& type, char content, const std::string& more = "") {
  return SshString(type) + SshString(std::string(32, content)) + more;
}

constexpr const char* ofDevice = "sk-ssh-ed25519@openssh.com";

TEST_F(Proofs, HaveNoSignerInALineWithoutEffect) {
  const auto line = [](const std::string& type, char content) {
    return type + ' ' + Store::ToBase64(SshKey(type, content));
  };
  const std::string ines = NoteKey("ines", std::string(32, 'i')).Text();
  const std::string asBo = NoteKey("bo", std::string(32, 'i')).Text();
  const std::string dana = line("ssh-ed25519", 'd');
  const std::string twice = "line 3: the key of line 1 is there again; expected one line for each key";
  const struct {
    std::string signers, found;
    int code = 3;
  } rows[] = {
      {ines + "\n#\n" + ines + " withdrawn 2026-11-24T00:00:00Z", twice},
      {ines + " withdrawn 2026-11-24T00:00:00Z\n\n" + ines, twice},
      {ines + "\n\n" + asBo, twice},
      {ines + "\n\ndana " + line("ssh-ed25519", 'i'), twice},
      {"dana " + dana + "\n\ndana valid-before=\"20261124Z\" " + dana, twice},
      {"dana valid-before=\"20261124Z\" " + dana + "\n\nbo " + dana + " a remark", twice},
      {"dana valid-before=\"20261124Z\",valid-before=\"20991124Z\" " + dana,
       "'signers', line 1: the option valid-before is there twice"},
      {"#\ndana namespaces=\"files\",namespaces=\"velora-ts\" " + dana,
       "'signers', line 2: the option namespaces is there twice"},
      {"#\ndana cert-authority " + dana, "'signers', line 2: expected NAME+ID+KEY"},
      {ines + "\ndana " + line(ofDevice, 'd'),
       "'signers', line 2: a key of the type 'sk-ssh-ed25519@openssh.com' is not supported; expected ssh-ed25519, "},
      {"dana namespaces=\"files\" " + dana + "\ndana namespaces=\"velora-ts\" " + dana + "\nbo namespaces=\"files\" " +
           line(ofDevice, 'd') + '\n' + ines + "\nbo " + line("ssh-ed25519", 'b'),
       "0 findings", 4},
  };
  for (const auto& [signers, found, code] : rows) {
    SCOPED_TRACE(signers);
    folder.Write("signers", signers + '\n');
    EXPECT_EQ(Tool("verify --signers signers"), code) << said;
    EXPECT_TRUE(Says(found)) << said;
  }
}

TEST_F(Proofs, TakeSignaturesOfSshInOneForm) {
  SignBySsh("dana");
  const std::string text = ContentOf(folder / "theirs.sig");
  const std::string body = text.substr(0, text.rfind("-----END"));
  const auto replaced = [](std::string in, const std::string& what, const std::string& with) {
    for (std::size_t at = 0; (at = in.find(what, at)) != std::string::npos; at += with.size()) {
      in.replace(at, what.size(), with);
    }
    return in;
  };
  const std::string fromDevice =
      std::string("SSHSIG") + std::string("\0\0\0\1", 4) + SshString(SshKey(ofDevice, 'd', SshString("ssh:"))) +
      SshString("velora-ts") + SshString("") + SshString("sha512") +
      SshString(SshString(ofDevice) + SshString(std::string(64, 's')) + std::string("\1\0\0\0\7", 5));
  const std::string begin = "-----BEGIN SSH SIGNATURE-----\n", end = "-----END SSH SIGNATURE-----\n";
  const struct {
    std::string text, refused = "";
  } rows[] = {
      {text},
      {replaced(text, "\n", "\r\n")},
      {text.substr(0, text.size() - 1)},
      {text + "\n\r\n\n"},
      {begin + replaced(body.substr(begin.size()), "\n", "") + '\n' + end},
      {text + text, "is no signature; expected what ssh-keygen -Y sign writes"},
      {begin + Store::ToBase64(fromDevice) + '\n' + end,
       "' is not supported; expected ssh-ed25519, ssh-rsa, or ecdsa-sha2-"},
  };
  for (const auto& [changed, refused] : rows) {
    SCOPED_TRACE(changed);
    const std::string file = folder.Write("changed.sig", changed).string();
    try {
      EXPECT_EQ(ReadSshSignature(file).text, text);
      EXPECT_EQ(refused, "");
    } catch (const Store::Error& error) {
      EXPECT_TRUE(HasMatch(error.what(), "changed.sig'")) << error.what();
      EXPECT_NE(refused, "") << error.what();
      EXPECT_NE(std::string(error.what()).find(refused), std::string::npos) << error.what();
    }
    EXPECT_EQ(SshSignatureIn(changed).has_value(), changed == text);
  }
}

TEST_F(Proofs, HaveNumbersOfCurvesInOneForm) {
  folder.Write("text", "a text\n");
  EXPECT_EQ(Shell("ssh-keygen -q -t ecdsa -N '' -f dana; ssh-keygen -Y sign -q -f dana -n velora-ts text"), 0) << said;
  SshSignature signature = ReadSshSignature((folder / "text.sig").string());
  const std::string bytes = signature.bytes;
  SshReader outer(bytes);
  SshReader numbers(outer.String());
  const std::string r(numbers.String()), s(numbers.String());
  const auto isOf = [&](const std::string& first, const std::string& second) {
    signature.bytes = SshString(SshString(first) + SshString(second));
    return Signed("a text\n", signature);
  };
  EXPECT_TRUE(isOf(r, s));
  EXPECT_FALSE(isOf('\0' + r, s));
  EXPECT_FALSE(isOf(r, '\0' + s));
  EXPECT_FALSE(r.front() == '\0' && isOf(r.substr(1), s));
}

PKCS7_SIGNER_INFO* SignerOf(PKCS7* stamp) { return sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(stamp), 0); }

void AddRemark(PKCS7* stamp) {
  PKCS7_add_attribute(SignerOf(stamp), NID_pkcs9_unstructuredName, V_ASN1_UTF8STRING, ASN1_UTF8STRING_new());
}

void DropParameters(PKCS7* stamp) {
  for (X509_ALGOR* const digest : {SignerOf(stamp)->digest_alg, sk_X509_ALGOR_value(stamp->d.sign->md_algs, 0)}) {
    X509_ALGOR_set0(digest, OBJ_nid2obj(NID_sha256), V_ASN1_UNDEF, nullptr);
  }
}

/// A time stamp in which something is changed that nobody signs.
std::string Changed(const std::string& token, void (*change)(PKCS7*)) {
  const auto* from = reinterpret_cast<const unsigned char*>(token.data());
  PKCS7* const stamp = d2i_PKCS7(nullptr, &from, static_cast<long>(token.size()));
  change(stamp);
  std::string changed(static_cast<std::size_t>(i2d_PKCS7(stamp, nullptr)), '\0');
  auto* to = reinterpret_cast<unsigned char*>(changed.data());
  i2d_PKCS7(stamp, &to);
  PKCS7_free(stamp);
  EXPECT_NE(changed, token);
  return changed;
}

TEST_F(Proofs, TellUnknownAuthoritiesFromWrongTimeStamps) {
  folder.Write("signers", Sign("ines") + '\n');
  EXPECT_EQ(Shell("cp authority.pem ours.pem; sqlite3 ts.db '.backup signed.db'"), 0);
  const auto issued = [](const std::string& name, const std::string& options) {
    return "openssl req -newkey rsa:2048 -nodes -subj /CN=" + name +
           " -keyout stamps.key -out stamps.csr; openssl x509 -req -in stamps.csr -CA authority.pem -CAkey root.key "
           "-CAcreateserial -extfile authority.cnf -extensions extensions -out stamps.pem " +
           options;
  };
  const std::string unknown = "time stamp 1 is by an authority that --tsa does not have: ";
  const struct {
    std::string authority, found;
    int code = 0;
  } rows[] = {
      {":", "existed at .*, with signature 1"},
      {issued("Late", "-days -1"), "finding: time stamp 1 does not hold: .*: seal 2", 1},
      {"openssl req -x509 -newkey rsa:2048 -nodes -utf8 -subj '/CN=Nook \u202e\x1b[31m' -addext "
       "extendedKeyUsage=critical,timeStamping -addext basicConstraints=CA:FALSE -keyout stamps.key -out stamps.pem",
       unknown + "CN=Nook .*\n", 4},
      {SOURCE "/tests/velora-ts/authority make; " + issued("Late", "-days -1"),
       "finding: time stamp 1 does not hold: .*: seal 2", 1},
      {SOURCE "/tests/velora-ts/authority make", unknown + "CN=Clockhouse stamps\n", 4},
  };
  for (const auto& [authority, found, code] : rows) {
    SCOPED_TRACE(authority);
    EXPECT_EQ(Shell(authority), 0) << said;
    EXPECT_EQ(Shell("rm -f ts.db-*; cp signed.db ts.db"), 0) << said;
    Stamp();
    EXPECT_EQ(Tool("verify --signers signers --tsa ours.pem"), code) << said;
    EXPECT_TRUE(HasMatch(said, found)) << said;
    EXPECT_FALSE(Says("\u202e") || Says("\x1b")) << said;
  }
  ASSERT_EQ(Tool("prove 2 -o focus.proof"), 0) << said;
  Evidence evidence = ProofsIn(ContentOf(folder / "focus.proof"), "focus.proof").front().evidence;
  const Authorities authorities((folder / "ours.pem").string());
  std::string& token = evidence.stamps.front().token;
  const std::string asItWas = token;
  for (const auto change : {&AddRemark, &DropParameters}) {
    token = Changed(asItWas, change);
    EXPECT_EQ(Judge(evidence, nullptr, &authorities).findings.size(), 1U);
  }
  token = asItWas;
  for (char& byte : token) {
    byte = static_cast<char>(byte ^ 4);
    EXPECT_EQ(Judge(evidence, nullptr, &authorities).findings.size(), 1U) << &byte - token.data();
    byte = static_cast<char>(byte ^ 4);
  }
}

TEST_F(Proofs, HaveALimitedNumberOfSignaturesAndTimeStamps) {
  Sign("ines");
  Stamp();
  SignBySsh("dana");
  ASSERT_EQ(Tool("prove 2 -o focus.proof"), 0) << said;
  const Proof proof = ProofsIn(ContentOf(folder / "focus.proof"), "focus.proof").front();
  ASSERT_EQ(proof.evidence.signatures.size(), 2U);
  folder.Write("signers", "");
  const std::string limit = "at most 64 signatures and as many time stamps in a proof";
  for (const int of : {0, 1, 2}) {
    SCOPED_TRACE(of);
    Proof more = proof;
    const auto add = [&](Proof& to, std::size_t count) {
      of < 2 ? to.evidence.signatures.resize(count, proof.evidence.signatures[static_cast<std::size_t>(of)])
             : to.evidence.stamps.resize(count, proof.evidence.stamps.front());
    };
    add(more, 64);
    const std::string text = more.Text();
    EXPECT_EQ(ProofsIn(text, "a.proof").front().Text(), text);
    add(more, 65);
    EXPECT_THROW(static_cast<void>(more.Text()), Store::Error);
  }
  std::string ofOthers = proof.Text();
  ofOthers.replace(ofOthers.find("\n\nvelora-ts/") + 2, 9, "sum.tests");
  EXPECT_THROW(ProofsIn(ofOthers, "a.proof"), Store::Error);
  // As somebody else can write it.
  const std::string whole = proof.Text(), line = whole.substr(whole.find("\xe2\x80\x94 "));
  std::string longer = whole;
  for (int more = 0; more < 63; ++more) {
    longer += line;
  }
  folder.Write("longer.proof", longer);
  EXPECT_EQ(Tool("prove --check longer.proof --signers signers"), 3) << said;
  EXPECT_TRUE(Says(limit)) << said;
  EXPECT_EQ(Shell("sqlite3 ts.db 'WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 73) INSERT "
                  "INTO timestamps SELECT i, seal, token FROM timestamps, n'"),
            0)
      << said;
  EXPECT_EQ(Tool("prove 2 -o longer.proof"), 3) << said;
  EXPECT_TRUE(Says("there are 2 signatures and 65 time stamps of this seal; expected " + limit)) << said;
}

TEST_F(Proofs, ReplaceOnlyWhatSuchCommandsWrote) {
  MakeKey("locked", std::string("-aes256 -pass 'pass:") + passphrase + "'");
  Sign("ines");
  EXPECT_EQ(Shell("ssh-keygen -q -t ed25519 -N '' -f dana; ln -s ts.db link; cp ts.db copy; openssl pkey -in ines.pem "
                  "-outform DER -out ines.der; (echo Bag Attributes; cat ines.pem) >bag.pem; : >empty"),
            0);
  const std::pair<const char*, std::vector<const char*>> rows[] = {
      {"prove 2 -o", {"ts.db", "link", "ines.pem", "bag.pem", "TSAL.config"}},
      {"seal --checkpoint", {"copy", "dana", "dana.pub"}},
      {"seal --timestamp-query", {"ts.db", "locked.pem", "ines.der"}},
      {"report last -o", {"ts.db", "ines.pem"}},
  };
  for (const auto& [command, files] : rows) {
    if (std::string_view(command) == "report last -o" && !WITH_PAGE) {
      continue;
    }
    for (const char* const file : files) {
      SCOPED_TRACE(std::string(command) + ' ' + file);
      const std::string before = ContentOf(folder / file);
      EXPECT_EQ(Tool(std::string(command) + ' ' + file), 3) << said;
      EXPECT_TRUE(Says(std::string("file '") + file + "' is not replaced, because no such command wrote it")) << said;
      EXPECT_EQ(ContentOf(folder / file), before);
    }
    for (const char* const file : {"new", "new", "empty"}) {
      EXPECT_EQ(Tool(std::string(command) + ' ' + file), 0) << said;
    }
    EXPECT_EQ(Shell("rm new; : >empty"), 0);
  }
}

TEST_F(Proofs, AreOfARunWhoseGuidBeginsWithDigitsToo) {
  EXPECT_EQ(Shell("sqlite3 ts.db \"INSERT INTO executions VALUES (20, '12345678-aaaa', NULL, 20, 1, 1, 'more', '', 5, "
                  "'2026-11-27T09'); INSERT INTO statuses VALUES (20, 20, 1, 14, '2026-11-27T10')\""),
            0)
      << said;
  Sign("ines");
  EXPECT_EQ(Tool("prove 12345678 -o run.proof"), 0) << said;
  EXPECT_TRUE(HasMatch(ContentOf(folder / "run.proof"), "^\\{\"record\":\"seal\",")) << said;
  EXPECT_EQ(Shell("sqlite3 ts.db \"INSERT INTO events VALUES (12345678, 1, NULL, NULL, 'late', '')\""), 0) << said;
  Sign("ines");
  EXPECT_EQ(Tool("prove 12345678 -o event.proof"), 0) << said;
  EXPECT_TRUE(Says("event 12345678 is proved; for the run whose guid begins so, give more of the guid")) << said;
  EXPECT_TRUE(HasMatch(ContentOf(folder / "event.proof"), "^\\{\"record\":\"event\",")) << said;
}

/// Has something signed, and changes the event 20 and its leaf before it types the passphrase.
constexpr const char* forging = R"(
import base64, hashlib, os, pty, sqlite3, sys

process, terminal = pty.fork()
if process == 0:
    os.execvp("velora-ts", "velora-ts seal --key locked.pem --signer bo".split())
said = b""
while b"Passphrase" not in said:
    said += os.read(terminal, 1000)
store = sqlite3.connect("ts.db")
for (name,) in store.execute("SELECT name FROM sqlite_master WHERE type = 'trigger'").fetchall():
    store.execute(f"DROP TRIGGER {name}")
store.execute("UPDATE events SET name = 'dose 99' WHERE event_id = 20")
line = open("line", "rb").read()
leaf, forged = (hashlib.sha256(b"\0" + one).digest() for one in (line, line.replace(b"dose 10", b"dose 99")))
for key, hashes in store.execute("SELECT leaf_id, hashes FROM tree_leaves").fetchall():
    changed = base64.b64encode(base64.b64decode(hashes).replace(leaf, forged)).decode()
    store.execute("UPDATE tree_leaves SET hashes = ? WHERE leaf_id = ?", (changed, key))
store.commit()
os.write(terminal, sys.argv[1].encode() + b"\n")
try:
    while said := os.read(terminal, 1000):
        print(said.decode())
except OSError:
    pass  # the other end is closed
sys.exit(os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]))
)";

TEST_F(Proofs, SignNothingThatIsChangedWhileAPassphraseIsAwaited) {
  MakeKey("locked", std::string("-aes256 -pass 'pass:") + passphrase + "'");
  Record(20);
  EXPECT_EQ(
      Shell("sqlite3 ts.db \"INSERT INTO events VALUES (20, 1, 20, NULL, 'dose 10', '')\"; velora-ts export run-20 "
            "| grep '\"dose 10\"' >line"),
      0)
      << said;
  folder.Write("forge.py", forging);
  EXPECT_EQ(Shell(std::string("python3 forge.py '") + passphrase + "'"), 0) << said;
  const std::string key = KeyOf("bo");
  folder.Write("signers", key + '\n');
  EXPECT_EQ(Query(folder / "ts.db", "SELECT name FROM events WHERE event_id = 20"), "dose 99\n");
  EXPECT_EQ(Tool("prove 20 -o forged.proof"), 0) << said;
  EXPECT_EQ(Tool("prove --check forged.proof --signers signers"), 1) << said;
  EXPECT_TRUE(Says("dose 99") && Says("finding: the signature of bo is not one of bo of this")) << said;
}

TEST(Merkle, TreesAreThoseThatOneMakesFromAllLeavesAtOnce) {
  using namespace Store;
  TreeHasher hasher;
  // As RFC 6962 says it, without keeping anything.
  const std::function<Hash(long long, long long)> naive = [&](long long first, long long size) -> Hash {
    if (size == 1) {
      return hasher.OfLeaf(std::to_string(first));
    }
    long long left = 1;
    while (2 * left < size) {
      left *= 2;
    }
    const Hash before = naive(first, left);
    return hasher.OfNode(before, naive(first + left, size - left));
  };
  const PartRoot part = [&](long long first, int level) { return naive(first, 1LL << level); };
  GrowingTree tree;
  for (long long size = 1; size <= 70; ++size) {
    tree.Add(hasher.OfLeaf(std::to_string(size - 1)));
    ASSERT_EQ(tree.Root(), naive(0, size));
    ASSERT_EQ(GrowingTree(size, part).Root(), naive(0, size));
    for (long long leaf = 0; leaf < size; ++leaf) {
      const std::vector<Hash> path = PathOf(leaf, size, part);
      const Hash hash = hasher.OfLeaf(std::to_string(leaf));
      ASSERT_EQ(RootBy(path, hash, leaf, size), tree.Root());
      ASSERT_NE(RootBy(path, hash, (leaf + 1) % size, size), size == 1 ? Hash() : tree.Root());
    }
  }
}

}  // namespace
