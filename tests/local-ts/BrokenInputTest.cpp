// Bad input raises what says where and why, and costs nothing that was acknowledged before.

#include "LocalTsTest.h"

#include <unistd.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace {

using BrokenInput = LocalTsTest;
namespace fs = std::filesystem;
using namespace std::string_literals;

constexpr std::size_t largestFile = std::size_t{16} * 1024 * 1024;

struct BrokenFile {
  std::string content;
  std::initializer_list<std::string> words;
};

void ExpectRefused(const ScratchFolder& folder, const char* name, const std::function<void()>& action,
                   std::initializer_list<BrokenFile> rows) {
  const std::string file = (folder / name).string();
  for (const auto& [content, words] : rows) {
    SCOPED_TRACE(testing::PrintToString(content.substr(0, 200)));
    folder.Write(name, content);
    const std::string error = ErrorOf(action);
    ExpectWords(error, words);
    ExpectWords(error, {"'" + file + "'", "expected"});
  }
  fs::remove(file);
  ExpectWords(ErrorOf(action), {"'" + file + "'", "No such file"});
  create_directory(fs::path(file));
  ExpectWords(ErrorOf(action), {"'" + file + "'", "folder"});
}

TEST_F(BrokenInput, TsalConfig) {
  TSInstance::SetTsalPath(folder.path.string());
  const std::string database = "<Database Backend='sqlite3' Connection='ts.db'/>";
  const std::string good = "<TSAL>" + database + "</TSAL>";
  folder.Write("TSAL.config", "\xef\xbb\xbf<?xml version='1.0'?>\r\n<!-- note -->" + good +
                                  std::string(largestFile - good.size() - 40, ' '));
  TSInstance::BeginSession();
  ExpectRefused(
      folder, "TSAL.config", [] { TSInstance::BeginSession(); },
      {
          {"", {"line 1", "no element", "'TSAL'"}},
          {"<TSAL>\n\n</Tsal>", {"line 3", "not well-formed"}},
          {good + "\n" + good, {"line 2", "'TSAL'", "one element"}},
          {good + "\n\nmore", {"line 3", "'more'", "one element"}},
          {good + "\n\0\n"s, {"line 2", "zero byte"}},
          {"<Tsal/>", {"line 1", "'Tsal'", "'TSAL'"}},
          {"\n<TSAL Colour='red'/>", {"line 2", "'Colour'", "'Instrument'"}},
          {"<TSAL Instrument='a' Instrument='b'>" + database + "</TSAL>", {"line 1", "'Instrument'", "twice"}},
          {"\n<TSAL>\n</TSAL>", {"line 2", "one element 'Database'"}},
          {"<TSAL>" + database + "\n" + database + "</TSAL>", {"line 2", "one element 'Database'"}},
          {"<TSAL>\n<Server/></TSAL>", {"line 2", "'Server'", "'Database'"}},
          {"<TSAL>\n\n word " + database + "</TSAL>", {"line 3", "'word'", "'Database'"}},
          {"<TSAL>\n<Database Backend='sqlite3' Connection='a'>\nword</Database></TSAL>",
           {"line 3", "'word'", "nothing"}},
          {"<TSAL>\n<Database Backend='sqlite3'/></TSAL>", {"line 2", "Connection=\"...\""}},
          {"<TSAL>\n<Database Backend='sqlite3' Connection=''/></TSAL>", {"line 2", "Connection=\"...\""}},
          {"<TSAL>\n<Database Connection='ts.db'/></TSAL>", {"line 2", "Backend=\"...\""}},
          {"<TSAL>\n<Database Backend='oracle' Connection='a'/></TSAL>", {"line 2", "'oracle'", "'sqlite3'"}},
          {"<TSAL>\n<Database Backend='sqlite3' File='a'/></TSAL>", {"line 2", "'File'", "'Backend', 'Connection'"}},
          {good + std::string(largestFile, ' '), {"larger", "16777216"}},
      });
  SaveEvent(Event("after"));  // into the session that began before
  EXPECT_EQ(Recorded("SELECT name, session_id FROM events"), "after|1\n");
}

TEST_F(BrokenInput, ActivitiesFile) {
  Begin();
  const std::string file = (folder / "activities.xml").string();
  ExpectRefused(
      folder, "activities.xml", [&] { ActivityMethods::RegisterAndGetActivityVersions(file, SessionHandle::Empty); },
      {
          {"", {"line 1", "no element", "'Activities'"}},
          {"<Activities>\n<Activity Name='A'>", {"line 2", "not well-formed"}},
          {"<Activities Name='a'/>", {"line 1", "'Name'", "none"}},
          {"<Activities>\nword</Activities>", {"line 2", "'word'", "'Activity'"}},
          {"<Activities>\n<Aktivity Name='A'/></Activities>", {"line 2", "'Aktivity'", "'Activity'"}},
          {"<Activities>\n<Activity/></Activities>", {"line 2", "'Activity'", "Name=\"...\""}},
          {"<Activities>\n<Activity Name='A' Kind='1'/></Activities>", {"line 2", "'Kind'", "'Name', 'Description'"}},
          {"<Activities><Activity Name='A'/>\n<Activity Name='A'/></Activities>", {"line 2", "second", "'A'"}},
          {"<Activities><Activity Name='A'>\n<Version/></Activity></Activities>", {"line 2", "'Version'"}},
          {"<Activities><Activity Name='A'>\n<ActivityVersion Name='V'/></Activity></Activities>",
           {"line 2", "Version=\"...\""}},
          {"<Activities><Activity Name='A'><ActivityVersion Name='V' Version='1'/></Activity>\n<Activity Name='B'>\n"
           "<ActivityVersion Name='V' Version='2'/></Activity></Activities>",
           {"line 3", "second 'ActivityVersion'", "'V'"}},
          {"<Activities><Activity Name='A'>\n<ActivityVersion Name='V' Version='1' Version='2'/></Activity>"
           "</Activities>",
           {"line 2", "'Version'", "twice"}},
          {"<Activities><Activity Name='A'>\n<ActivityVersion Name='V' Version='1'><V/></ActivityVersion></Activity>"
           "</Activities>",
           {"line 2", "'V'", "nothing"}},
          {std::string(largestFile + 1, ' '), {"larger", "16777216"}},
      });
  EXPECT_EQ(Recorded("SELECT (SELECT COUNT(*) FROM activities) + (SELECT COUNT(*) FROM registrations)"), "0\n");
}

TEST_F(BrokenInput, DatabaseThatCannotBeRecordedIn) {
  const auto execute = [this](const char* database, const std::string& statement) {
    soci::session(soci::sqlite3, "dbname=" + (folder / database).string()) << statement;
  };
  create_directory(folder / "folder.db");
  folder.Write("text.db", std::string(4096, 'x'));
  execute("other.db", "CREATE TABLE microscopes (name)");
  Begin("newer.db");
  SaveEvent(Event("recorded"));
  execute("newer.db", "INSERT INTO ts_schema VALUES (2, '')");
  Begin("versionless.db");
  execute("versionless.db", "DELETE FROM ts_schema");
  Begin("good.db");

  static const struct {
    std::string database;
    bool raises;  // of IsConnectable; it answers false else
    std::initializer_list<std::string> words;
  } rows[] = {{"no/such/folder.db", false, {"cannot be opened"}},
              {"folder.db", false, {"cannot be opened"}},
              {"text.db", true, {"not a database"}},
              {"other.db", true, {"another program", "expected"}},
              {"newer.db", true, {"version 2", "expected version 1", "newer program"}},
              {"versionless.db", true, {"version 0", "expected version 1"}}};
  for (const auto& [database, raises, words] : rows) {
    SCOPED_TRACE(database);
    Configure(database);
    const std::string before = raises ? ContentOf(folder / database) : "";
    bool answer = false;
    EXPECT_EQ(!ErrorOf([&] { answer = TSInstance::IsConnectable(); }).empty(), raises);
    EXPECT_FALSE(answer);
    const std::string error = ErrorOf([] { TSInstance::BeginSession(); });
    ExpectWords(error, words);
    ExpectWords(error, {(folder / database).string()});
    EXPECT_TRUE(!raises || ContentOf(folder / database) == before) << "the file was changed";
    SaveEvent(Event(database));  // into the session that began before
  }
  EXPECT_EQ(Recorded("SELECT COUNT(*) FROM events", "good.db"), "6\n");
  EXPECT_EQ(Recorded("SELECT name FROM events", "newer.db"), "recorded\n");
}

TEST_F(BrokenInput, ReadOnlyDatabase) {
  Begin();
  SaveEvent(Event("recorded"));
  Begin("other.db");  // lets go of the first
  Configure("ts.db");
  static const struct {
    unsigned file, folder;
    const char* word;
  } rows[] = {{0444, 0777, "only be read"}, {0666, 0555, "readonly"}, {0000, 0777, "cannot be opened"}};
  for (const auto& [fileMode, folderMode, word] : rows) {
    permissions(folder / "ts.db", static_cast<fs::perms>(fileMode));
    permissions(folder.path, static_cast<fs::perms>(folderMode));
    if (geteuid() == 0 && seteuid(65534) != 0) {  // nothing is read-only for a superuser
      GTEST_SKIP() << "no other user's rights can be taken on here";
    }
    bool connectable = false;
    ErrorOf([&] { connectable = TSInstance::IsConnectable(); });
    const std::string error = ErrorOf([] { TSInstance::BeginSession(); });
    ASSERT_EQ(seteuid(getuid()), 0);
    EXPECT_FALSE(connectable) << word;
    ExpectWords(error, {"'" + (folder / "ts.db").string() + "'", word});
  }
  permissions(folder / "ts.db", static_cast<fs::perms>(0666));
  Begin();
  SaveEvent(Event("again"));
  EXPECT_EQ(Recorded("SELECT name, session_id FROM events"), "recorded|1\nagain|2\n");
}

TEST_F(BrokenInput, ReadAllTextFromFileGivesEveryByteOrSaysWhyNot) {
  using Utils::TypeUtils;
  std::string bytes(300'000, '\0');
  std::generate(bytes.begin(), bytes.end(), [byte = 0]() mutable { return static_cast<char>(byte++ % 257); });
  for (const std::string& content : {""s, bytes}) {
    EXPECT_TRUE(TypeUtils::ReadAllTextFromFile(folder.Write("file\n'\xff", content).string()) == content);
  }
  const std::string file = folder.Write("file", "content").string();
  for (const auto& [path, word] : {std::pair(folder.path.string(), "folder"),
                                   {file + ".missing", "No such file"},
                                   {file + "/below", "Not a directory"},
                                   {file + "\0.txt"s, "zero byte"},
                                   {"", "No such file"},
                                   {"/proc/self/mem", "error"}}) {
    ExpectWords(ErrorOf([&path = path] { TypeUtils::ReadAllTextFromFile(path); }),
                {"'" + std::string(path.c_str()), word});
  }
}

}  // namespace
