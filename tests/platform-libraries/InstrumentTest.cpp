// The instrument that environment variables describe.

#include "support/System.h"

#include <VeloraInfraKivAccess/KivAccess.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

TEST(Instrument, IsAvailableWhenItsTypeIsAnInteger) {
  const auto factory = Quor::Velora::Infra::KivAccess::GetFactory();
  EXPECT_FALSE(factory->CreateInstrumentAccess()->IsAvailable());
  for (const char* none : {"", "TEM", "1 ", " 1", "+1", "1.0", "2147483648"}) {
    System::SetVariable("VELORA_INSTRUMENT_TYPE", none);
    EXPECT_FALSE(factory->CreateInstrumentAccess()->IsAvailable()) << none;
  }
  System::SetVariable("VELORA_INSTRUMENT_OPTIONS", "a;b=c\n\xff");
  for (const auto& [text, number] : {std::pair("2147483647", INT32_MAX), {"-2147483648", INT32_MIN}, {"007", 7}}) {
    System::SetVariable("VELORA_INSTRUMENT_TYPE", text);
    const auto access = factory->CreateInstrumentAccess();
    System::SetVariable("VELORA_INSTRUMENT_TYPE", "99");  // too late for this access
    ASSERT_TRUE(access->IsAvailable()) << text;
    const auto configuration = access->GetInstrument()->GetConfiguration();
    EXPECT_EQ(static_cast<std::int32_t>(configuration->GetMicroscopeType()), number);
    EXPECT_EQ(configuration->GetOptionText(), "a;b=c\n\xff");
  }
}

}  // namespace
