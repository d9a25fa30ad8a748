// The instrument that environment variables describe.

#include <VeloraInfraKivAccess/KivAccess.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

namespace {

void Set(const char* name, const char* value) {
  if (value == nullptr) {
    unsetenv(name);
  } else {
    setenv(name, value, 1);
  }
}

TEST(Instrument, IsAvailableWhenItsTypeIsAnInteger) {
  struct Row {
    const char* type;
    std::optional<std::int32_t> expected;
    const char* options = "";
  };
  std::vector<Row> rows = {{"2147483647", INT32_MAX, "a;b=c\n\xff"}, {"-2147483648", INT32_MIN, nullptr}, {"007", 7}};
  for (const char* none : {"", "TEM", "1 ", " 1", "+1", "1.0", "0x1", "2147483648"}) {
    rows.push_back({none, std::nullopt});
  }
  rows.push_back({nullptr, std::nullopt});
  const auto factory = Quor::Velora::Infra::KivAccess::GetFactory();
  for (const auto& [type, expected, options] : rows) {
    SCOPED_TRACE(type == nullptr ? "unset" : type);
    Set("VELORA_INSTRUMENT_TYPE", type);
    Set("VELORA_INSTRUMENT_OPTIONS", options);
    const auto access = factory->CreateInstrumentAccess();
    Set("VELORA_INSTRUMENT_TYPE", "99");  // too late for this access
    ASSERT_EQ(access->IsAvailable(), expected.has_value());
    if (expected) {
      const auto configuration = access->GetInstrument()->GetConfiguration();
      EXPECT_EQ(static_cast<std::int32_t>(configuration->GetMicroscopeType()), *expected);
      EXPECT_EQ(configuration->GetOptionText(), options == nullptr ? "" : options);
    }
  }
}

}  // namespace
