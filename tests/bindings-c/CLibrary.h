#pragma once

#include "support/System.h"

#include <velora_ts.h>

#include <filesystem>

/// The C interface as it is shipped: its library, loaded from a file and used through its exports.
class CLibrary {
 public:
  /// @param file what the loader takes: with a slash in it.
  explicit CLibrary(const std::filesystem::path& file) : handle(System::Load(file)) {}
  CLibrary(const CLibrary&) = delete;
  CLibrary& operator=(const CLibrary&) = delete;
  ~CLibrary() { System::Unload(handle); }

 private:
  void* const handle;

  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(System::Find(handle, name));
  }

 public:
#define VELORA_TS_FOUND(name) \
  decltype(velora_ts_##name)* const name = Find<decltype(velora_ts_##name)>("velora_ts_" #name)
  VELORA_TS_FOUND(last_error);
  VELORA_TS_FOUND(available);
  VELORA_TS_FOUND(create_logging);
  VELORA_TS_FOUND(close_logging);
  VELORA_TS_FOUND(create_execution);
  VELORA_TS_FOUND(create_execution_under);
  VELORA_TS_FOUND(update_execution);
  VELORA_TS_FOUND(create_event);
  VELORA_TS_FOUND(save_event);
  VELORA_TS_FOUND(add_bool);
  VELORA_TS_FOUND(add_double);
  VELORA_TS_FOUND(add_int);
  VELORA_TS_FOUND(add_text);
  VELORA_TS_FOUND(create_configurator);
  VELORA_TS_FOUND(close_configurator);
  VELORA_TS_FOUND(set_parent);
  VELORA_TS_FOUND(set_gateway);
  VELORA_TS_FOUND(set_logger);
#undef VELORA_TS_FOUND
};
