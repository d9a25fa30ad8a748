#include "StoredParameter.h"

#include "StoredNumber.h"
#include "StoredText.h"

#include <TSAL/Error.h>

#include <type_traits>
#include <variant>

namespace Quor::TolvaServices::Local {
namespace {

const char* KindOf(const Types::ns1__InstrumentParameterString& /*wire*/) { return "text"; }
const char* KindOf(const Types::ns1__InstrumentParameterInt& /*wire*/) { return "int"; }
const char* KindOf(const Types::ns1__InstrumentParameterDouble& /*wire*/) { return "double"; }
const char* KindOf(const Types::ns1__InstrumentParameterBoolean& /*wire*/) { return "bool"; }

}  // namespace

StoredParameter ToStored(const Types::InstrumentEvent& event, std::size_t position) {
  const auto& parameter = event.Parameters[position - 1];
  if (!parameter) {
    throw TsError("event '" + event.Name + "' has no parameter at position " + std::to_string(position) +
                  "; expected one behind every reference");
  }
  return std::visit(
      [](const auto& wire) {
        StoredParameter stored{ToStoredText(wire.Name), KindOf(wire), {}, {}};
        if constexpr (std::is_same_v<decltype(wire.Value), std::string>) {
          stored.text = ToStoredText(wire.Value);
        } else if (const auto number = static_cast<double>(wire.Value); WrittenWhereNoColumnHolds(number).empty()) {
          stored.number = number;
        } else {
          stored.text = WrittenWhereNoColumnHolds(number);
        }
        return stored;
      },
      parameter->ToGsoap());
}

}  // namespace Quor::TolvaServices::Local
