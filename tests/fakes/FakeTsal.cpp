#include "fakes/Scene.h"

#include <TSAL/Methods.h>

#include <iomanip>
#include <sstream>

// The records are the real ones. The operations write down what they were told, every field that the component has a
// say in, and answer what the test said.

namespace Quor::TolvaServices {
namespace {

using namespace Types;

template <typename... Texts>
std::string Quoted(const std::string& first, const Texts&... rest) {
  return ('\'' + first + '\'' + ... + (", '" + rest + '\''));
}

const char* Described(bool value) { return value ? "true" : "false"; }

std::string Described(const Tsid* id) { return id == nullptr ? "null" : Quoted(id->GetGuid()); }

std::string Described(const SessionHandle& session) { return session.Session() == nullptr ? "Empty" : "a session"; }

std::string Described(const DateTimeOffset& time) {
  if (!time.IsStated()) {
    return "no time";
  }
  const std::int64_t ago = DateTimeOffset::Now().Microseconds() - time.Microseconds(), minute = 60'000'000;
  return -minute < ago && ago < minute ? "now" : std::to_string(time.Microseconds());
}

std::string Described(const InstrumentEvent& event) {
  const Fakes::Aside aside;  // a stream would keep a failure to itself
  std::ostringstream text;
  text << Quoted(event.Name) << " at " << Described(event.TimeStamp) << " [" << std::setprecision(17);
  for (const auto& parameter : event.Parameters) {
    const ns1__InstrumentParameter sent = parameter->ToGsoap();
    constexpr const char* kinds[] = {"string ", "int ", "double ", "bool "};
    text << (parameter == event.Parameters.front() ? "" : ", ") << kinds[sent.index()];
    std::visit([&](const auto& content) { text << Quoted(content.Name) << '=' << content.Value; }, sent);
  }
  text << ']' << (event.Own1 || event.Own2 ? " with references" : "");
  return text.str();
}

// Has its name in every field.
ActivityVersion VersionNamed(const std::string& name) {
  ActivityVersion version;
  version.Id = Tsid("version of " + name);
  version.Name = version.Version = version.Description = version.Activity.Description = name;
  return version;
}

std::string Described(const ActivityVersion& version) {
  const bool isWhole = version.Id == (version.Name.empty() ? Tsid() : VersionNamed(version.Name).Id) &&
                       version.Version == version.Name && version.Description == version.Name &&
                       version.Activity.Description == version.Name;
  return Quoted(version.Id.GetGuid()) + (isWhole ? "" : " in parts");
}

std::string Described(const ActivityExecution& execution) {
  const Fakes::Aside aside;  // a stream would keep a failure to itself
  std::ostringstream text;
  text << Quoted(execution.Id.GetGuid()) << " version " << Described(execution.ActivityVersion) << " status "
       << static_cast<std::int32_t>(execution.Status.Code) << ' ' << Described(execution.Status.Time) << " node "
       << Quoted(execution.Node) << " description " << Quoted(execution.Description) << " kind " << execution.Kind
       << " parent " << Described(execution.Parent == nullptr ? nullptr : &execution.Parent->Id);
  return text.str();
}

// A handle whose release shows in the journal.
SessionHandle MakeSession() {
  return SessionHandle({&Fakes::TheScene(), [](void*) { Fakes::Note("session released"); }});
}

}  // namespace

bool TSInstance::IsTsServicePresent() { return Fakes::Call("TSAL IsTsServicePresent()").servicePresent; }

bool TSInstance::IsConnectable() { return Fakes::Call("TSAL IsConnectable()").connectable; }

void TSInstance::SetTsalPath(const std::string& path) { Fakes::Call("TSAL SetTsalPath(" + Quoted(path) + ')'); }

SessionHandle TSInstance::BeginSession() { return Fakes::Call("TSAL BeginSession()"), MakeSession(); }

SessionHandle TSInstance::BeginSession(const std::string& text1, const std::string& text2, const std::string& text3) {
  return Fakes::Call("TSAL BeginSession(" + Quoted(text1, text2, text3) + ')'), MakeSession();
}

std::map<std::string, ActivityVersion> Methods::ActivityMethods::RegisterAndGetActivityVersions(
    const std::string& activitiesFilePath, const SessionHandle& session) {
  const Fakes::Answers& answers = Fakes::Call("TSAL RegisterAndGetActivityVersions(" + Quoted(activitiesFilePath) +
                                              ", " + Described(session) + ')');
  std::map<std::string, ActivityVersion> versions;
  for (const std::string& name : answers.versions) {
    versions.emplace(name, VersionNamed(name));
  }
  return versions;
}

void Methods::ActivityMethods::SaveActivityExecution(ActivityExecution& execution, const SessionHandle& session) {
  const Fakes::Answers& answers =
      Fakes::Call("TSAL SaveActivityExecution(" + Described(execution) + ", " + Described(session) + ')');
  if (execution.Id == Tsid()) {
    execution.Id = Tsid(answers.newGuid);
  }
}

ActivityExecution Methods::ActivityMethods::GetActivityExecution(const Tsid& id, bool flag,
                                                                 const Tsid* configurationId) {
  const Fakes::Answers& answers = Fakes::Call("TSAL GetActivityExecution(" + Quoted(id.GetGuid()) + ", " +
                                              Described(flag) + ", " + Described(configurationId) + ')');
  static const ActivityExecution parentOfFetched = [] {
    ActivityExecution parent;
    parent.Id = Tsid("parent of fetched");
    return parent;
  }();
  ActivityExecution execution;
  execution.Parent = &parentOfFetched;
  execution.Id = answers.fetchedGuid.empty() ? id : Tsid(answers.fetchedGuid);
  execution.Description = answers.fetchedDescription;
  execution.Node = "fetched node";
  execution.Status = {Enums::ActivityExecStatus{7}, DateTimeOffset::FromMicroseconds(1)};
  execution.ActivityVersion = VersionNamed("fetched");
  execution.Kind = 3;
  return execution;
}

void Methods::LoggingMethods::SaveEvent(const InstrumentEvent& event, const Tsid& configurationId,
                                        const Tsid* activityExecutionId, bool flag, const SessionHandle& session) {
  Fakes::Call("TSAL SaveEvent(" + Described(event) + ", " + Described(&configurationId) + ", " +
              Described(activityExecutionId) + ", " + Described(flag) + ", " + Described(session) + ')');
}

InstrumentEventConfigResult Methods::SystemMethods::SaveInstrumentConfigWithResult(
    const std::string& configurationText, const std::string& text2, const std::string& vendorName,
    const std::string& hostName, const std::string& optionText, const std::string& instrumentClass,
    const std::string& modelName, const std::string& text8, const std::string& text9) {
  const std::string texts =
      Quoted(configurationText, text2, vendorName, hostName, optionText, instrumentClass, modelName, text8, text9);
  InstrumentEventConfigResult result;
  result.ConfigurationId = Tsid(Fakes::Call("TSAL SaveInstrumentConfigWithResult(" + texts + ')').configurationGuid);
  result.Text = "text of the result";
  result.SessionId = Tsid("session");
  result.Time = DateTimeOffset::FromMicroseconds(1);
  result.Reference = {&Fakes::TheScene(), [](void*) {}};
  return result;
}

std::string Utils::TypeUtils::ReadAllTextFromFile(const std::string& path) {
  return Fakes::Call("TSAL ReadAllTextFromFile(" + Quoted(path) + ')').fileText;
}

}  // namespace Quor::TolvaServices
