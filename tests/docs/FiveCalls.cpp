// Makes the calls that docs/local-ts.md shows, in the current directory.

#include <VeloraTsLogging/IFactory.h>

int main() {
  const auto logging = Quor::Velora::Infra::TsLogging::IFactory::CreateTsLogging("instrument.xml");
#include "five-calls.inc"
}
