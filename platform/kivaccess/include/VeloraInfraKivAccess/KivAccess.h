#pragma once

#include <cstdint>
#include <memory>
#include <string>

// VELORA_INFRA_KIVACCESS_BUILD is defined by the build of the library alone.
#if defined(_WIN32) && defined(VELORA_INFRA_KIVACCESS_BUILD)
#define VELORA_INFRA_KIVACCESS_API __declspec(dllexport)
#elif defined(_WIN32)
#define VELORA_INFRA_KIVACCESS_API __declspec(dllimport)
#else
#define VELORA_INFRA_KIVACCESS_API __attribute__((visibility("default")))
#endif

namespace Quor::Velora::Infra::KivAccess {

/// The type of a microscope, as the instrument reports it.
enum class MicroscopeType : std::int32_t {};

/// What an instrument is and has.
class IInstrumentConfiguration {
 public:
  virtual ~IInstrumentConfiguration() = default;
  /// The instrument's options; empty when there is nothing to report.
  virtual std::string GetOptionText() = 0;
  virtual MicroscopeType GetMicroscopeType() = 0;
};

class IInstrument {
 public:
  virtual ~IInstrument() = default;
  /// Never null; lives as long as the access object.
  virtual IInstrumentConfiguration* GetConfiguration() = 0;
};

/// Access to the instrument that this computer controls.
class IInstrumentAccess {
 public:
  virtual ~IInstrumentAccess() = default;
  /// Whether the instrument can be asked for its configuration.
  virtual bool IsAvailable() = 0;
  /// Only while the instrument is available. Never null; lives as long as the access object.
  virtual IInstrument* GetInstrument() = 0;
};

class IFactory {
 public:
  virtual ~IFactory() = default;
  /// A new access object, never empty; it outlives the factory.
  virtual std::shared_ptr<IInstrumentAccess> CreateInstrumentAccess() = 0;
};

/// The library's factory, never empty. May be called from any thread.
VELORA_INFRA_KIVACCESS_API std::shared_ptr<IFactory> GetFactory();

}  // namespace Quor::Velora::Infra::KivAccess
