#include "StoredEvent.h"

#include "StoredTimeOf.h"
#include "store/values/StoredNumber.h"
#include "store/values/StoredText.h"

#include <TSAL/Error.h>

#include <type_traits>
#include <variant>

namespace Quor::TolvaServices::Local {
namespace {

using Velora::Store::ParameterRow;

const char* KindOf(const Types::ns1__InstrumentParameterString& /*wire*/) { return "text"; }
const char* KindOf(const Types::ns1__InstrumentParameterInt& /*wire*/) { return "int"; }
const char* KindOf(const Types::ns1__InstrumentParameterDouble& /*wire*/) { return "double"; }
const char* KindOf(const Types::ns1__InstrumentParameterBoolean& /*wire*/) { return "bool"; }

ParameterRow ToStored(const Types::InstrumentParameterBase& parameter) {
  return std::visit(
      [](const auto& wire) {
        ParameterRow row{Velora::Store::ToStoredText(wire.Name), KindOf(wire), {}, {}};
        if constexpr (std::is_same_v<decltype(wire.Value), std::string>) {
          row.text = Velora::Store::ToStoredText(wire.Value);
        } else {
          const auto number = static_cast<double>(wire.Value);
          row.text = Velora::Store::TextKeptForNumber(number);
          row.number = row.text ? std::nullopt : std::optional(number);
        }
        return row;
      },
      parameter.ToGsoap());
}

}  // namespace

Velora::Store::EventRow ToStored(const Types::InstrumentEvent& event) {
  Velora::Store::EventRow row;
  row.name = Velora::Store::ToStoredText(event.Name);
  row.at = StoredTimeOf(event.TimeStamp);
  row.parameters.reserve(event.Parameters.size());
  for (const auto& parameter : event.Parameters) {
    if (!parameter) {
      throw TsError("event '" + event.Name + "' has no parameter at position " +
                    std::to_string(row.parameters.size() + 1) + "; expected one behind every reference");
    }
    row.parameters.push_back(ToStored(*parameter));
  }
  return row;
}

}  // namespace Quor::TolvaServices::Local
