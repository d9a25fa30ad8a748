#include <TSAL/Error.h>
#include <TSAL/Types.h>
#include <VeloraText/Printable.h>

#include <chrono>

namespace Quor::TolvaServices {

TsError::TsError(const std::string& what) : std::runtime_error(Velora::Text::WithVisibleZeros(what)) {}
TsError::~TsError() = default;

namespace Types {

DateTimeOffset DateTimeOffset::Now() {
  using namespace std::chrono;
  return FromMicroseconds(duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
}

const SessionHandle SessionHandle::Empty;

InstrumentParameterBase::InstrumentParameterBase(std::string name) : Name(std::move(name)) {}
InstrumentParameterBase::~InstrumentParameterBase() = default;

InstrumentParameterString::InstrumentParameterString(std::string name, std::string value)
    : InstrumentParameterBase(std::move(name)), Value(std::move(value)) {}
ns1__InstrumentParameter InstrumentParameterString::ToGsoap() const {
  return ns1__InstrumentParameterString{Name, Value};
}

InstrumentParameterInt::InstrumentParameterInt(std::string name, std::int32_t value)
    : InstrumentParameterBase(std::move(name)), Value(value) {}
ns1__InstrumentParameter InstrumentParameterInt::ToGsoap() const { return ns1__InstrumentParameterInt{Name, Value}; }

InstrumentParameterDouble::InstrumentParameterDouble(std::string name, double value)
    : InstrumentParameterBase(std::move(name)), Value(value) {}
ns1__InstrumentParameter InstrumentParameterDouble::ToGsoap() const {
  return ns1__InstrumentParameterDouble{Name, Value};
}

InstrumentParameterBoolean::InstrumentParameterBoolean(std::string name, bool value)
    : InstrumentParameterBase(std::move(name)), Value(value) {}
ns1__InstrumentParameter InstrumentParameterBoolean::ToGsoap() const {
  return ns1__InstrumentParameterBoolean{Name, Value};
}

Element::~Element() = default;
Activity::~Activity() = default;
ActivityVersion::~ActivityVersion() = default;
ActivityExecution::~ActivityExecution() = default;

ns1__ActivityVersion ActivityVersion::ToGsoap() const {
  return {Id.GetGuid(), Name, Version, Description, Activity.Id.GetGuid(), Activity.Name, Activity.Description};
}

}  // namespace Types
}  // namespace Quor::TolvaServices
