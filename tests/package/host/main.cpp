// A host that knows the installed package alone: records through the component and asks TS what it kept.

#include <TSAL/Methods.h>
#include <VeloraTsLogging/IFactory.h>

#include <iostream>

int main() {
  using namespace Quor;
  const auto logging = Velora::Infra::TsLogging::IFactory::CreateTsLogging("instrument.xml");
  const std::string guid = logging->CreateActivityExecution("Section", "node", "kept by TS");
  const auto kept =
      TolvaServices::Methods::ActivityMethods::GetActivityExecution(TolvaServices::Types::Tsid(guid), false, nullptr);
  std::cout << guid << ": " << kept.Description << std::endl;
}
