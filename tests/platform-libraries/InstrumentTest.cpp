// The instrument that environment variables describe.

#include <VeloraInfraKivAccess/KivAccess.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

namespace {

TEST(Instrument, IsAvailableWhenItsTypeIsAnInteger) {
  const auto factory = Quor::Velora::Infra::KivAccess::GetFactory();
  EXPECT_FALSE(factory->CreateInstrumentAccess()->IsAvailable());
  for (const char* none : {"", "TEM", "1 ", " 1", "+1", "1.0", "2147483648"}) {
    setenv("VELORA_INSTRUMENT_TYPE", none, 1);
    EXPECT_FALSE(factory->CreateInstrumentAccess()->IsAvailable()) << none;
  }
  setenv("VELORA_INSTRUMENT_OPTIONS", "a;b=c\n\xff", 1);
  for (const auto& [text, number] : {std::pair("2147483647", INT32_MAX), {"-2147483648", INT32_MIN}, {"007", 7}}) {
    setenv("VELORA_INSTRUMENT_TYPE", text, 1);
    const auto access = factory->CreateInstrumentAccess();
    setenv("VELORA_INSTRUMENT_TYPE", "99", 1);  // too late for this access
    ASSERT_TRUE(access->IsAvailable()) << text;
    const auto configuration = access->GetInstrument()->GetConfiguration();
    EXPECT_EQ(static_cast<std::int32_t>(configuration->GetMicroscopeType()), number);
    EXPECT_EQ(configuration->GetOptionText(), "a;b=c\n\xff");
  }
}

}  // namespace
