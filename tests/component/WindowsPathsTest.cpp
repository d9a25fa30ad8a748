// The data root with the real system below, where paths have drives, either separator, and characters beyond a byte.
// D: is a drive of its own; scripts/wine makes it.

#include "support/ComponentTest.h"

namespace {

namespace fs = std::filesystem;

class WindowsPaths : public ComponentTest {
 protected:
  /// What bring-up writes when the library is put into a folder, with settings beside it, and loaded by a path of it.
  std::string BroughtUp(const fs::path& place, const fs::path& path) {
    create_directories(place);
    remove(place / name);
    copy_file(file, place / name);
    PutSettings(place);
    Library(path / name).Create("i");
    return Journal();
  }

  const fs::path name = file.filename();
};

TEST_F(WindowsPaths, DataRootIsTheFolderOfTheFileAsItWasNamed) {
  const std::string here = current.string() + "\\sub\\", odd = "D:\\two  blanks\\100%s 'x' (deleted)\\";
  struct Row {
    fs::path place, path;
    std::string root;
  };
  const Row rows[] = {
      {"C:\\Tools\\Lab", "C:\\Tools\\Lab", "C:\\Tools\\Lab\\"},
      {"C:\\Tools\\Lab", "C:/Tools/Lab", "C:\\Tools\\Lab\\"},
      {"C:\\Tools\\Lab", "C:\\Tools\\.\\x\\..\\Lab", "C:\\Tools\\Lab\\"},
      {"C:\\Tools\\Lab", "c:\\TOOLS\\lAB", "c:\\TOOLS\\lAB\\"},
      {"D:\\", "D:\\", "D:\\"},
      {odd, odd, odd},
      {"sub", ".\\sub", here},
      {"sub", "./sub", here},
  };
  for (const Row& row : rows) {
    const std::string lines = BroughtUp(row.place, row.path);
    EXPECT_NE(lines.find(Check(row.root, "TSAL SetTsalPath('" + row.root + "')")), std::string::npos)
        << row.path << ":\n"
        << lines;
  }
}

TEST_F(WindowsPaths, DataRootOf260CharactersAndMoreIsStillWhole) {
  fs::create_directory("D:\\long");  // the standard library makes no first folder behind the long form of a root
  for (const std::size_t length : {258U, 259U, 260U, 261U, 521U, 3000U}) {  // of the file's path
    std::string place = "D:\\long\\";
    while (place.size() + name.native().size() < length) {
      place += std::string(std::min<std::size_t>(99, length - place.size() - name.native().size() - 1), 'd') + '\\';
    }
    const std::string whole = "\\\\?\\" + place;  // the form that the system takes at any length
    const std::string lines = BroughtUp(whole, whole);
    EXPECT_TRUE(lines.find(Check(place, "TSAL SetTsalPath('" + place + "')")) != std::string::npos ||
                lines.find(Check(whole, "TSAL SetTsalPath('" + whole + "')")) != std::string::npos)
        << length << ":\n"
        << lines;
  }
}

TEST_F(WindowsPaths, DataRootThatIsNoNarrowTextMakesTsUnavailableAndTheLoggingObjectHarmless) {
  const std::string check =
      Scope("CheckTsServiceAvailability", "TSAL IsTsServicePresent()", Scope("GetDataRootDirectory"));
  for (const wchar_t* place : {L"D:\\\u6f22", L"D:\\\u20ac", L"D:\\a\\\U0001F52C"}) {
    EXPECT_EQ(BroughtUp(place, place),
              Scope("CreateTsLoggingSession", check) + Scope("GetInstance", check, notSupported));
  }
}

TEST_F(WindowsPaths, LettersOfTheCodePageAreOneByteInTheLogAndUtf8ForTs) {
  EXPECT_NE(BroughtUp(L"D:\\\u00e4", L"D:\\\u00e4").find(Check("D:\\\xe4\\", "TSAL SetTsalPath('D:\\\xc3\xa4\\')")),
            std::string::npos);
}

}  // namespace
