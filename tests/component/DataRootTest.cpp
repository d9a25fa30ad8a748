// From the system's wide path of the library's file to the narrow path of its folder.

#include "InternalsTest.h"
#include "bringup/DataRootDirectory.h"

#include <typeinfo>

namespace Quor::Velora::Infra::TsLogging {
namespace {

using DataRoot = InternalsTest;

const std::string root = System::Path("/opt/lab/").string();

TEST_F(DataRoot, EndsInOneSeparatorAndIsNeverCutOff) {
  const std::wstring slash(1, System::separator);
  std::map<std::wstring, std::wstring> folders = {
      {slash + L"opt" + slash + L"lib.so", slash + L"opt" + slash}, {slash + L"lib.so", slash}, {L"", L""}};
  for (const unsigned int length : {258u, 259u, 260u, 261u, 519u, 520u, 521u, 4096u, 40000u}) {
    const std::wstring folder = slash + std::wstring(length - 8, L'd') + slash;
    folders[folder + L"lib.so"] = folder;
  }
  for (const auto& [file, folder] : folders) {
    systemCalls.moduleFile = file;
    EXPECT_EQ(GetModuleDirectory(), folder) << file.size() << " characters";
  }
}

TEST_F(DataRoot, OfAModuleThatCannotBeFoundIsEmpty) {
  systemCalls.moduleIsFound = false;
  TsLogging::CheckTsServiceAvailability("no such file");
  EXPECT_EQ(Journal(), Check("", notFound));
}

TEST_F(DataRoot, ThatIsNoNarrowTextRaisesBetweenItsTraceLinesAndEndsInTheCheckAlone) {
  const auto makeWide = [] { systemCalls.moduleFile.insert(4, 1, L'\x6F22'); };
  At("TSAL IsConnectable", makeWide);
  EXPECT_THROW(TsLogging::CreateTsLoggingSession("i", "a"), std::bad_cast);
  EXPECT_EQ(Journal(), Scope("CreateTsLoggingSession", Check(root, notFound), Scope("GetDataRootDirectory")));
  EXPECT_FALSE(TsLogging::CheckTsServiceAvailability("a"));
  EXPECT_EQ(Journal(), Scope("CheckTsServiceAvailability", "TSAL IsTsServicePresent()", Scope("GetDataRootDirectory")));
}

TEST_F(DataRoot, NarrowTextHasOneByteForEachCharacter) {
  if (System::pathsAreBytes) {  // elsewhere the call of the runtime cannot be led here
    systemCalls.furtherBytes = 1;
    EXPECT_THROW(ToNarrowString(L"a"), std::bad_cast);
    systemCalls.furtherBytes = 0;
  }
  EXPECT_EQ(ToNarrowString(nullptr), "");
  for (const unsigned int length : {0u, 1u, 4095u, 4096u, 4097u, 10000u}) {
    EXPECT_EQ(ToNarrowString(std::wstring(length, L'\xE4').c_str()), std::string(length, '\xE4'));
    for (const unsigned int at : {0u, length / 2, length}) {
      const std::wstring text = std::wstring(length, L'x').insert(at, 1, L'\x100');
      EXPECT_THROW(ToNarrowString(text.c_str()), std::bad_cast) << length << " characters, wrong at " << at;
    }
  }
}

}  // namespace
}  // namespace Quor::Velora::Infra::TsLogging
