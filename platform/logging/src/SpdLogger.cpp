#include "SpdLogger.h"

#include "Lines.h"

#include <VeloraSystem/System.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <spdlog/spdlog.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace Quor::Velora::Infra::Logging {
namespace {

spdlog::level::level_enum Spd(Level level) {
  switch (level) {
    case Level::Info:
      return spdlog::level::info;
    case Level::Warning:
      return spdlog::level::warn;
    default:
      return spdlog::level::err;
  }
}

spdlog::sink_ptr SinkFor(const std::string& file) {
  if (file.empty()) {
    return std::make_shared<spdlog::sinks::stderr_sink_mt>();
  }
  // Made here where it is not there yet, since spdlog lets everybody read what it makes. What is wrong it will say.
  std::error_code ignored;
  std::filesystem::create_directories(std::filesystem::path(file).parent_path(), ignored);
  ::Velora::System::MakeOwnFile(file);
  return std::make_shared<spdlog::sinks::basic_file_sink_mt>(file);
}

std::unique_ptr<spdlog::logger> Open() {
  const char* const variable = std::getenv("VELORA_LOG_FILE");
  const std::string file = variable == nullptr ? "" : variable;
  const std::string target = file.empty() ? "standard error" : "the log file '" + file + "' (VELORA_LOG_FILE)";
  std::unique_ptr<spdlog::logger> made;
  try {
    made = std::make_unique<spdlog::logger>("velora", SinkFor(file));
  } catch (const spdlog::spdlog_ex& reason) {
    throw std::runtime_error(target + " cannot be opened: " + reason.what());
  }
  made->set_pattern("%Y-%m-%dT%H:%M:%S.%f%z [%l] %v");
  made->flush_on(spdlog::level::trace);
  made->set_error_handler([target](const std::string& reason) {
    throw std::runtime_error("log line cannot be written to " + target + ": " + reason);
  });
  return made;
}

}  // namespace

void SpdLogger::Write(Level level, const std::wstring& source, const std::string& message) {
  Opened().log(Spd(level), LineText(source, message));
}

spdlog::logger& SpdLogger::Opened() {
  const std::lock_guard lock(mutex);
  if (!logger) {
    logger = Open();  // tried again at the next line when it raises
  }
  return *logger;
}

}  // namespace Quor::Velora::Infra::Logging
