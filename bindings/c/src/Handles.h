#pragma once

#include <VeloraTsLogging/ITsLogging.h>
#include <VeloraTsLogging/ITsLoggingConfigurator.h>
#include <velora_ts.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

namespace Velora::CInterface {

class Answer;

/// What can stand behind a handle, and the place of each type of handles there.
using Handled = std::variant<std::shared_ptr<Quor::Velora::Infra::TsLogging::ITsLogging>,
                             std::shared_ptr<Quor::Velora::Unmanaged::ITsLoggingConfigurator>, Answer*>;
template <typename Handle>
constexpr std::size_t kindOf = std::variant_npos;
template <>
inline constexpr std::size_t kindOf<velora_ts_logging> = 0;
template <>
inline constexpr std::size_t kindOf<velora_ts_configurator> = 1;
template <>
inline constexpr std::size_t kindOf<velora_ts_answer> = 2;

template <typename Handle>
using MeantBy = std::variant_alternative_t<kindOf<Handle>, Handled>;

/// What stands behind the open handles of the process. A handle is a number in the clothes of a pointer: it is never
/// followed and never used twice, so no handle can lead to freed memory. Used only inside Boundary.
class Handles {
 public:
  /// Makes a handle of an object.
  template <typename Handle>
  static Handle* Open(MeantBy<Handle> object) {
    return std::bit_cast<Handle*>(Add(std::move(object)));
  }

  /// The object of a handle. It can be closed while the object is used, so the caller keeps a copy.
  /// @throws Misuse if the handle is null, closed, of another kind, or no handle; so does Close.
  template <typename Handle>
  static MeantBy<Handle> Of(Handle* handle) {
    return std::get<kindOf<Handle>>(Find(NumberOf(handle), kindOf<Handle>));
  }

  /// Forgets a handle.
  /// @return its object, to be released when the handle is gone already.
  template <typename Handle>
  static MeantBy<Handle> Close(Handle* handle) {
    auto object = std::move(std::get<kindOf<Handle>>(Find(NumberOf(handle), kindOf<Handle>)));
    Remove(NumberOf(handle));
    return object;
  }

 private:
  template <typename Handle>
  static std::uintptr_t NumberOf(Handle* handle) {
    return std::bit_cast<std::uintptr_t>(handle);
  }

  static std::uintptr_t Add(Handled object);
  static Handled& Find(std::uintptr_t number, std::size_t kind);
  static void Remove(std::uintptr_t number);
};

}  // namespace Velora::CInterface
