#pragma once

#include <cstdint>
#include <memory>
#include <string>

// Only the build of the library defines VELORA_INFRA_KIVACCESS_BUILD.
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

/// The type and the options of an instrument.
class IInstrumentConfiguration {
 public:
  virtual ~IInstrumentConfiguration() = default;
  /// The options of the instrument as text; empty if there are none.
  virtual std::string GetOptionText() = 0;
  /// The type of the microscope.
  virtual MicroscopeType GetMicroscopeType() = 0;
};

/// The instrument that this computer controls.
class IInstrument {
 public:
  virtual ~IInstrument() = default;
  /// The configuration of the instrument. Never null; it lives as long as the access object.
  virtual IInstrumentConfiguration* GetConfiguration() = 0;
};

/// Access to the instrument that this computer controls.
class IInstrumentAccess {
 public:
  virtual ~IInstrumentAccess() = default;
  /// Whether the instrument can report its configuration now.
  virtual bool IsAvailable() = 0;
  /// The instrument. Call it only while the instrument is available. Never null; it lives as long as the access object.
  virtual IInstrument* GetInstrument() = 0;
};

/// Makes access objects.
class IFactory {
 public:
  virtual ~IFactory() = default;
  /// A new access object. Never null; it can outlive the factory.
  virtual std::shared_ptr<IInstrumentAccess> CreateInstrumentAccess() = 0;
};

/// The factory of the library. Never null. Can be called from any thread.
VELORA_INFRA_KIVACCESS_API std::shared_ptr<IFactory> GetFactory();

}  // namespace Quor::Velora::Infra::KivAccess
