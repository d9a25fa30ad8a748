// What velora-ts takes from a command line and writes to a console, whatever the code page of that is, and to a file.
// Needs a console.

#include "local-ts/LocalTsTest.h"
#include "support/System.h"

#include <VeloraSystem/Console.h>

#include <windows.h>

#include <filesystem>
#include <iostream>
#include <vector>

namespace {

const std::string node = "\u00B5\u20AC\u00C5 \u03A9 \u96FB \U0001F52C";

class Console : public LocalTsTest {
 protected:
  Console() {
    Begin();
    Saved(node);
    System::SetVariable("NO_COLOR", "1");
  }

  HANDLE Start(const std::wstring& arguments, HANDLE output) const {
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdOutput = how.hStdError = output;
    PROCESS_INFORMATION started{};
    std::wstring line = L"velora-ts " + arguments;
    EXPECT_NE(CreateProcessW(fs::path(VELORA_TS).c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                             folder.path.c_str(), &how, &started),
              0);
    CloseHandle(started.hThread);
    return started.hProcess;
  }
  static DWORD CodeOf(HANDLE process) {
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(process, 60000), WAIT_OBJECT_0);
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    return code;
  }

  /// What a new screen shows, line by line and without the empty ones, once a work has written to it.
  template <typename Work>
  static std::vector<std::wstring> Shown(const Work& work) {
    const HANDLE screen = CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                    &inherited, CONSOLE_TEXTMODE_BUFFER, nullptr);
    EXPECT_NE(screen, INVALID_HANDLE_VALUE) << "this is no console";
    work(screen);
    CONSOLE_SCREEN_BUFFER_INFO info{};
    GetConsoleScreenBufferInfo(screen, &info);
    std::vector<std::wstring> lines;
    for (COORD at{0, 0}; at.Y <= info.dwCursorPosition.Y; ++at.Y) {
      std::wstring line(static_cast<std::size_t>(info.dwSize.X), L' ');
      DWORD count = 0;
      ReadConsoleOutputCharacterW(screen, line.data(), static_cast<DWORD>(line.size()), at, &count);
      if (line.find_first_not_of(L' ') != std::wstring::npos) {
        lines.push_back(line);
      }
    }
    CloseHandle(screen);
    return lines;
  }

  static inline SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  const std::wstring wide = fs::u8path(node).wstring();
};

TEST_F(Console, ShowsEveryLetterInEveryCodePage) {
  const std::wstring asked = L"runs --node \"" + wide + L"\"";
  for (const UINT page : {437U, 850U, 1252U, 65001U}) {
    SCOPED_TRACE(page);
    EXPECT_TRUE(SetConsoleCP(page) != 0 && SetConsoleOutputCP(page) != 0);
    const auto lines = Shown([&](HANDLE screen) { EXPECT_EQ(CodeOf(Start(asked, screen)), 0); });
    ASSERT_EQ(lines.size(), 2);  // the head and the run
    EXPECT_NE(lines[1].find(wide), std::wstring::npos);
    EXPECT_EQ(GetConsoleOutputCP(), page);
  }
}

TEST_F(Console, PutsLettersTogetherThatCameInPieces) {
  const auto lines = Shown([](HANDLE screen) {
    const HANDLE former = GetStdHandle(STD_OUTPUT_HANDLE);
    SetStdHandle(STD_OUTPUT_HANDLE, screen);
    const Velora::System::StandardStreams streams;
    for (const char byte : node) {
      std::cout << byte << std::flush;
    }
    SetStdHandle(STD_OUTPUT_HANDLE, former);
  });
  ASSERT_EQ(lines.size(), 1);
  EXPECT_TRUE(lines[0].starts_with(wide + L' '));
}

TEST_F(Console, HasNoFullLineWhichAnEmptyOneWouldFollow) {
  const ActivityExecution run = Saved("run");
  SaveEvent(Event("Image", InstrumentParameterString("Text", std::string(300, 'x'))), Tsid(), &run.Id);
  const auto lines =
      Shown([&](HANDLE screen) { EXPECT_EQ(CodeOf(Start(L"show run --events --columns Text", screen)), 0); });
  const std::wstring& event = lines.back();
  EXPECT_EQ(event[event.size() - 3], L'x');
  EXPECT_EQ(event.substr(event.size() - 2), L"\u2026 ");
}

TEST_F(Console, GivesAFileTheBytesAsTheyAre) {
  const auto written = [&](const std::wstring& arguments, DWORD expected) {
    const fs::path path = folder / "written";
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
    EXPECT_EQ(CodeOf(Start(arguments, file)), expected);
    CloseHandle(file);
    return ContentOf(path);
  };
  const std::string runs = written(L"runs --node \"" + wide + L"\"", 0);
  EXPECT_NE(runs.find(node + '\n'), std::string::npos) << runs;
  EXPECT_EQ(runs.find('\r'), std::string::npos) << runs;
  EXPECT_TRUE(written(L"\xD800", 2).starts_with("there is no verb '\uFFFD'")) << "half a letter is none";
}

TEST_F(Console, AnOutputThatNobodyReadsEndsItQuietly) {
  HANDLE reading = nullptr;
  HANDLE writing = nullptr;
  EXPECT_NE(CreatePipe(&reading, &writing, &inherited, 0), 0);
  CloseHandle(reading);
  EXPECT_EQ(CodeOf(Start(L"runs", writing)), 141U);
  CloseHandle(writing);
}

/// Keeps Ctrl-C from ending this process, which it can reach late. Unlike an order to ignore it, no child inherits it.
BOOL WINAPI Survive(DWORD /*event*/) { return TRUE; }

TEST_F(Console, ControlCEndsWhatFollows) {
  SetConsoleCtrlHandler(&Survive, TRUE);
  folder.Write(
      "TSAL.config",
      "<TSAL><Database Backend='sqlite3' Connection='ts.db'/><Forward Connection='host=127.0.0.1 port=1'/></TSAL>");
  for (const auto& [verb, code, firstWords] : {std::tuple(L"tail", 130U, L"following run "),
                                               {L"forward --follow", 0U, L"forwarding from "},
                                               {L"watch --stopped", 0U, L"watching; "},
                                               {L"serve --listen 127.0.0.1:0", 0U, L"serving "}}) {
    const auto lines = Shown([&, verb = verb, code = code](HANDLE screen) {
      const HANDLE process = Start(verb, screen);
      const auto isFollowing = [screen] {
        CONSOLE_SCREEN_BUFFER_INFO info{};
        return GetConsoleScreenBufferInfo(screen, &info) != 0 && info.dwCursorPosition.Y > 0;
      };
      while (!isFollowing() && WaitForSingleObject(process, 10) == WAIT_TIMEOUT) {
      }
      GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
      EXPECT_EQ(CodeOf(process), code);
    });
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines[0].starts_with(firstWords));
  }
}

}  // namespace
