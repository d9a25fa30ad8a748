#include <VeloraSystem/ShellCommand.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string_view>
#include <system_error>
#include <vector>

namespace Velora::System {
namespace {

constexpr int bySignal = 128;  // as shells tell it

/// How a command begins: in a process group of its own, with the signals as they are at the start of a program.
class Beginning {
 public:
  Beginning() {
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, STDERR_FILENO, STDOUT_FILENO);
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
  }
  Beginning(const Beginning&) = delete;
  Beginning& operator=(const Beginning&) = delete;
  ~Beginning() {
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
  }

  pid_t Spawn(const char* const* arguments, const char* const* environment) const {
    pid_t process = 0;
    const int error = posix_spawn(&process, arguments[0], &files, &attributes, const_cast<char* const*>(arguments),
                                  const_cast<char* const*>(environment));
    if (error != 0) {
      throw Failure("the shell '" + std::string(arguments[0]) +
                    "' cannot be run: " + std::system_category().message(error));
    }
    return process;
  }

 private:
  posix_spawn_file_actions_t files{};
  posix_spawnattr_t attributes{};
};

std::vector<std::string> EnvironmentWith(const std::map<std::string, std::string>& variables) {
  std::vector<std::string> all;
  for (const char* const* variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text(*variable);
    if (variables.count(std::string(text.substr(0, text.find('=')))) == 0) {
      all.emplace_back(text);
    }
  }
  for (const auto& [name, value] : variables) {
    all.emplace_back(name).append(1, '=').append(value);
  }
  return all;
}

}  // namespace

struct ShellCommand::Process {
  pid_t number;
  std::optional<int> result = std::nullopt;

  void Ask(int how) {
    int status = 0;
    pid_t ended = 0;
    do {
      ended = waitpid(number, &status, how);
    } while (ended < 0 && errno == EINTR);
    if (ended == number) {
      result = WIFEXITED(status) ? WEXITSTATUS(status) : bySignal + WTERMSIG(status);
    }
  }
};

ShellCommand::ShellCommand(const std::string& command, const std::map<std::string, std::string>& variables)
    : process([&] {
        const std::vector<std::string> texts = EnvironmentWith(variables);
        std::vector<const char*> environment;
        environment.reserve(texts.size() + 1);
        for (const std::string& text : texts) {
          environment.push_back(text.c_str());
        }
        environment.push_back(nullptr);
        const char* const arguments[] = {"/bin/sh", "-c", command.c_str(), nullptr};
        return std::make_unique<Process>(Process{Beginning().Spawn(arguments, environment.data())});
      }()) {}

ShellCommand::~ShellCommand() { Kill(); }

std::optional<int> ShellCommand::Result() {
  if (!process->result) {
    process->Ask(WNOHANG);
  }
  return process->result;
}

void ShellCommand::Kill() {
  if (!Result()) {
    kill(-process->number, SIGKILL);
    process->Ask(0);
  }
}

}  // namespace Velora::System
