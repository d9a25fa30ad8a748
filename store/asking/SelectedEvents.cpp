#include "store/asking/SelectedEvents.h"

#include <algorithm>
#include <utility>

namespace Velora::Store {

namespace {

constexpr const char* byTime = "v.at, v.event_id";
constexpr int eventColumn = 5;

std::set<std::string> NamesOf(const std::vector<Condition>& conditions) {
  std::set<std::string> names;
  for (const Condition& condition : conditions) {
    names.insert(condition.name);
  }
  return names;
}

/// A condition for parameters that have one of some names, which are own values of the query.
std::string HasOneOf(std::size_t names) {
  std::string condition = " AND p.name IN (";
  for (std::size_t number = 0; number < names; ++number) {
    condition += (number == 0 ? "?" : ", ?") + std::to_string(WindowQuestion::firstOwn + number);
  }
  return condition + ')';
}

}  // namespace

FulfillingEvents::FulfillingEvents(const WindowQuestion& window, std::vector<Condition> given)
    : window(window),
      conditions(std::move(given)),
      names(NamesOf(conditions)),
      notMet(names),
      parameters(window.Parameters("p.position, p.name, p.kind, p.value_text, p.value_number, p.event_id", "",
                                   HasOneOf(names.size()) + " ORDER BY " + byTime + ", p.position")) {}

FulfillingEvents& FulfillingEvents::Ask() {
  more = parameters.Ask(window.Values({names.begin(), names.end()})).Next();
  return *this;
}

bool FulfillingEvents::Next() {
  while (more) {
    if (Read()) {
      return true;
    }
  }
  return false;
}

bool FulfillingEvents::Read() {
  std::vector<bool> fulfilled(conditions.size());
  event = parameters.Integer(eventColumn);
  for (; more && parameters.Integer(eventColumn) == event; more = parameters.Next()) {
    const std::string_view name = parameters.Text(1);
    for (std::size_t number = 0; number < conditions.size(); ++number) {
      if (conditions[number].name == name) {
        fulfilled[number] = fulfilled[number] || conditions[number].IsFulfilledBy(parameters);
      }
    }
    if (!notMet.empty()) {
      notMet.erase(std::string(name));
    }
  }
  return std::find(fulfilled.begin(), fulfilled.end(), false) == fulfilled.end();
}

SelectedEvents::SelectedEvents(const Reader& store, const EventWindow& given, const std::vector<Condition>& conditions,
                               const std::string& columns, const std::string& joins)
    : window(store, given),
      events(store, columns, window.Tables() + joins, window.Condition(), byTime, window.OfParameters()) {
  if (!conditions.empty()) {
    fulfilling = std::make_unique<FulfillingEvents>(window, conditions);
  }
}

SelectedEvents& SelectedEvents::Ask() {
  events.Ask(window.Values());
  more = fulfilling && fulfilling->Ask().Next();
  return *this;
}

bool SelectedEvents::Next() {
  while (events.Next()) {
    if (!fulfilling) {
      return true;
    }
    if (!more) {
      return false;
    }
    if (events.Event().Integer(0) == fulfilling->Event()) {
      more = fulfilling->Next();
      return true;
    }
  }
  return false;
}

const std::set<std::string>& SelectedEvents::NotMet() const {
  static const std::set<std::string> none;
  return fulfilling ? fulfilling->NotMet() : none;
}

}  // namespace Velora::Store
