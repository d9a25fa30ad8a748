// Bad input raises what says where and why, and costs nothing that was acknowledged before.

#include "LocalTsTest.h"
#include "support/System.h"

namespace {

using BrokenInput = LocalTsTest;

TEST_F(BrokenInput, XmlIsRefusedWithItsFileAndLineAndNothingIsTakenFromIt) {
  const std::string good = "<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>";
  const std::string in = "<Activities><Activity Name='A'>\n", end = "</Activity></Activities>";
  const std::pair<std::string, std::string> rows[] = {
      {"", "line 1: no element in the file; expected one element 'TSAL'"},
      {"<TSAL>\n\n</Tsal>", "line 3: not well-formed XML: 'TSAL' is ended by another name, 'Tsal'"},
      {"<TSAL>\n<Database>", "line 2: not well-formed XML: the file ends within 'Database'"},
      {"\n<TSAL Instrument='a", "line 2: not well-formed XML: what begins here does not end"},
      {"<TSAL>\n<Database Backend=sqlite3/></TSAL>", "line 2: not well-formed XML: unexpected 's'"},
      {"<TSAL>\n<Database Backend=\xe2\x80\x9csqlite3\"/></TSAL>",
       "line 2: not well-formed XML: unexpected '\xe2\x80\x9c'"},
      {good + "\n" + good, "line 2: unexpected 'TSAL'"},
      {good + "\n\nmore", "line 3: unexpected 'more'"},
      {"more\n" + good, "line 1: unexpected 'more'"},
      {good + "\n\0\n"s, "line 2: unexpected zero byte"},
      {"\n<TSAL Instrument='\1'/>", "line 2: not well-formed XML: a control character, number 1"},
      {good + "\n<!-- \xe4 -->", "line 2: bytes that are not UTF-8; expected the file to be saved in UTF-8"},
      {"\xff\xfe<\0T\0"s, "line 1: the file is in UTF-16; expected UTF-8"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?>" + good, "line 1: encoding 'ISO-8859-1' is not read; expected"},
      {"\n<?xml version='1.0'?>" + good, "line 2: not well-formed XML: '<?xml' within the file"},
      {"<?xml encoding='UTF-8'?>" + good, "line 1: not well-formed XML: a wrong declaration"},
      {"\n<!DOCTYPE TSAL\n[<!ENTITY a 'ts.db'>]><TSAL/>", "line 2: unexpected '<!DOCTYPE'; expected a file without it"},
      {"<TSAL\nInstrument='&amp;&foo;'/>", "line 2: not well-formed XML: unknown entity '&foo;'; expected &amp; for"},
      {"<TSAL\nInstrument='a & b'/>", "line 2: not well-formed XML: a bare '&'; expected &amp;"},
      {"<TSAL\nInstrument='a&b=c'/>", "line 2: not well-formed XML: a bare '&'; expected &amp;"},
      {"<TSAL\nInstrument='a<b'/>", "line 2: not well-formed XML: a bare '<'; expected &lt;"},
      {"\n<TSAL Instrument='a&#x0;b'/>", "line 2: an invalid character reference"},
      {"\n<TSAL Instrument='&#4294967361;'/>", "line 2: an invalid character reference"},
      {"<TSAL\nInstrument='&#xZZ;'/>", "line 2: an invalid character reference; expected the number"},
      {"<TSAL\nInstrument='&#xD800;'/>", "line 2: an invalid character reference; expected the number"},
      {"<TSAL Instrument='a'\nInstrument='b'/>", "line 2: 'TSAL' has the attribute 'Instrument' twice"},
      {"\n<TSAL>\n</TSAL>", "line 2: expected one element 'Database'"},
      {"<TSAL><Database/>\n<Database/></TSAL>", "line 2: expected one element 'Database'"},
      {"<TSAL>\n<Server/></TSAL>", "line 2: unknown element 'Server'; expected elements 'Database'"},
      {"<TSAL><Database>\n\n word</Database></TSAL>", "line 3: unexpected text 'word'; expected nothing"},
      {"<TSAL>\n<Database Backend='sqlite3' Connection=''/></TSAL>", "line 2: 'Database' has no 'Connection'"},
      {"<TSAL>\n<Database Backend='oracle' Connection='a'/></TSAL>", "line 2: unknown Backend 'oracle'"},
      {"<TSAL>\n<Database Backend='postgresql' Connection='password=guess me'/></TSAL>", "line 2: PostgreSQL does not"},
      {"<TSAL><Database Backend='postgresql' Connection='postgresql://me:my@own@host'/></TSAL>", "PostgreSQL does not"},
      {"<TSAL><Database Backend='postgresql' Connection='postgresql://me:1/my@host/ts'/></TSAL>",
       "PostgreSQL does not"},
      {"<TSAL><Database Backend='postgresql' Connection='postgresql://me:my/own@host'/></TSAL>", "PostgreSQL does not"},
      {"<TSAL>\n<Unit Parameter='Defocus'/><Database Backend='sqlite3' Connection='a'/></TSAL>",
       "line 2: 'Unit' has no 'Text'; expected"},
      {"<TSAL><Database Backend='sqlite3' Connection='a'/><Unit Parameter='Tilt' Text='°'/>\n<Unit Parameter='Tilt' "
       "Text='°'/></TSAL>",
       "line 2: a second 'Unit' has the Parameter 'Tilt'; expected one"},
      {"<TSAL>\n<Unit Parameter='Defocus' Text='µm'/></TSAL>", "line 1: expected one element 'Database'"},
      {"<TSAL><Database Backend='sqlite3' Connection='a'/>\n<Forward/></TSAL>",
       "line 2: 'Forward' has no 'Connection'"},
      {"<TSAL><Database Backend='sqlite3' Connection='a'/><Forward Connection='my'/>\n<Forward "
       "Connection='my'/></TSAL>",
       "line 2: a second 'Forward'; expected at most one"},
      {"<TSAL><Database Backend='postgresql' Connection='dbname=a'/>\n<Forward Connection='service=my'/></TSAL>",
       "line 2: 'Forward' beside Backend=\"postgresql\"; expected it beside Backend=\"sqlite3\""},
      {"<TSAL><Database><Database/>\n</Database></TSAL>", "line 1: unknown element 'Database'; expected nothing"},
      {"<Activities Name='a'/>", "line 1: 'Activities' has an unknown attribute 'Name'; expected: none"},
      {"<Activities>\n<Aktivity/></Activities>", "line 2: unknown element 'Aktivity'; expected elements 'Activity'"},
      {"<Activities>\n<Activity/></Activities>", "line 2: 'Activity' has no 'Name'"},
      {"<Activities><Activity Name='A'/>\n<Activity Name='A'/></Activities>", "line 2: a second 'Activity' has"},
      {in + "<ActivityVersion Name='V'/>" + end, "line 2: 'ActivityVersion' has no 'Version'"},
      {in + "<ActivityVersion Name='V' Version='1'/></Activity><Activity Name='B'>\n<ActivityVersion Name='V'/>" + end,
       "line 3: a second 'ActivityVersion' has"}};
  folder.Write("TSAL.config", "\xef\xbb\xbf<?xml version='1.0' encoding='utf-8'?>\r\n<!-- note -->" + good);
  TSInstance::SetTsalPath(folder.path.string());
  const SessionHandle session = TSInstance::BeginSession();
  for (const auto& [content, words] : rows) {
    SCOPED_TRACE(content.substr(0, 200));
    const bool activities = content.find("<Activities") == 0;
    const std::string file = folder.Write(activities ? "activities.xml" : "TSAL.config", content).string();
    const auto read = [&] {
      activities ? void(ActivityMethods::RegisterAndGetActivityVersions(file, session))
                 : void(TSInstance::BeginSession());
    };
    ExpectError(read, {"'" + file + "'", words, "expected"});
  }
  SaveEvent(Event("after"));  // into the session that began before
  EXPECT_EQ(Recorded("SELECT name, session_id, (SELECT COUNT(*) FROM activities) FROM events"), "after|1|0\n");
}

TEST_F(BrokenInput, ADatabaseThatCannotBeRecordedInIsNamedAndStaysAsItIs) {
  permissions(folder.path, fs::perms{0777});
  const bool ordinary = System::GiveUpRights();  // nothing is read-only for a superuser
  folder.Write("text.db", std::string(4096, 'x'));
  OpenFile(folder / "other.db")->RunScript("CREATE TABLE microscopes (name)");
  create_directory(folder / "shut");
  for (const char* database : {"newer.db", "reading.db", "hidden.db", "shut/ts.db", "good.db"}) {
    Begin(database);
  }
  EXPECT_TRUE(TSInstance::IsConnectable());
  EXPECT_EQ(WhyNotAvailable(), "");
  OpenFile(folder / "newer.db")->RunScript("INSERT INTO ts_schema VALUES (99, '')");
  permissions(folder / "reading.db", fs::perms{0444});
  permissions(folder / "hidden.db", fs::perms{0});
  permissions(folder / "shut", fs::perms{0555});
  for (const auto& [database, words] : {std::pair("no/such/folder.db", "cannot be opened"),
                                        {"hidden.db", "cannot be opened"},
                                        {"reading.db", "can only be read; expected"},
                                        {"shut/ts.db", "expected an existing folder, and the right to write"},
                                        {"text.db", "not a database"},
                                        {"other.db", "tables of another program; expected"},
                                        {"newer.db", "version 99; expected version 3 at most: a newer program"}}) {
    Configure(database);
    if (!ordinary && (database == "hidden.db"s || database == "reading.db"s || database == "shut/ts.db"s)) {
      continue;
    }
    const std::string before = ContentOf(folder / database);
    bool connectable = false;
    const auto ask = [&] { connectable = TSInstance::IsConnectable(); };
    words == "cannot be opened"s ? ask() : ExpectError(ask, {words});
    EXPECT_FALSE(connectable) << database;
    EXPECT_NE(WhyNotAvailable().find(words), std::string::npos) << WhyNotAvailable();
    ExpectError([] { TSInstance::BeginSession(); }, {"'" + (folder / database).string() + "'", words});
    EXPECT_EQ(ContentOf(folder / database), before);
    SaveEvent(Event(database));  // into the session that began before
  }
  EXPECT_EQ(Recorded("SELECT COUNT(*) FROM events", "good.db"), ordinary ? "7\n" : "4\n");
  System::TakeRightsBack();
  if (!ordinary) {
    GTEST_SKIP() << "only the files without rights: no ordinary user's can be taken on here";
  }
}

TEST_F(BrokenInput, OnlyRegularFilesAreReadAndTheSmallOnesToALimit) {
  const SessionHandle session = Begin("good.db");
  const auto read = [&](const std::string& file) {
    if (file.ends_with("activities.xml")) {
      ActivityMethods::RegisterAndGetActivityVersions(file, session);
    } else if (file.ends_with("instrument.xml")) {
      Utils::TypeUtils::ReadAllTextFromFile(file);
    } else {
      TSInstance::IsConnectable();
    }
  };
  const std::string tooLarge = "larger than expected: at most 67108864 bytes";
  std::vector<std::pair<std::function<void(const fs::path&)>, std::string>> rows = {
      {[](const fs::path& file) { create_directory(file); }, "a folder; expected a regular file"},
      {[](const fs::path& file) { std::ofstream{file}, resize_file(file, 64 * 1024 * 1024 + 1); }, tooLarge}};
  if (System::pathsAreBytes) {  // where there are such files, and one without a size that has no end
    const auto link = [](const char* to) { return [to](const fs::path& file) { create_symlink(to, file); }; };
    EXPECT_EQ(std::system(("mkfifo '" + (folder / "fifo").string() + "'").c_str()), 0);
    rows.insert(rows.end(), {{link("fifo"), "a FIFO; expected a regular file"},
                             {link("/dev/zero"), "a device; expected a regular file"},
                             {link("/proc/self/pagemap"), tooLarge}});
  }
  Configure("ts.db");
  for (const char* const name : {"ts.db", "activities.xml", "instrument.xml", "TSAL.config"}) {
    const bool store = name == "ts.db"s;
    const fs::path file = folder / name;
    for (const auto& [make, words] : rows) {
      if (!store || words != tooLarge) {
        remove(file);
        make(file);
        ExpectError([&] { read(file.string()); }, {"'" + file.string() + "'", words});
      }
    }
  }
}

TEST_F(BrokenInput, ReadAllTextFromFileGivesEveryByteOrSaysWhyNot) {
  const auto read = [](const std::string& file) { return Utils::TypeUtils::ReadAllTextFromFile(file); };
  const std::string content = std::string(300'000, '\0') + "\r\n\x1a\xff",
                    file = folder.Write(System::pathsAreBytes ? "file\n'\xff" : "file '", content).string();
  EXPECT_TRUE(read(file) == content);
  EXPECT_EQ(read(folder.Write("empty", "").string()), "");
  ExpectError([&] { read(file + "\0.txt"s); }, {"'" + file, "zero byte"});
  ExpectError([&] { read("missing"); }, {"'missing'", "cannot be read: ", "; expected a regular file"});
  if (System::pathsAreBytes) {  // where a file is that opens and cannot be read
    ExpectError([&] { read("/proc/self/mem"); }, {"'/proc/self/mem'", "error"});
  }
}

}  // namespace
