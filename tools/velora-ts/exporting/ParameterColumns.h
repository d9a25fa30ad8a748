#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Velora::Ts {

/// The columns of a table for the parameters of events: one for each name, and further ones for a name that an event
/// has more than once.
class ParameterColumns {
 public:
  /// Where a parameter stands: the number of its event, and its position.
  using Place = std::pair<long long, long long>;

  /// Begins the next event, whose parameters follow in their order.
  void BeginEvent() { ++event; }
  /// Learns of a parameter.
  void Learn(std::string_view name, const Place& place);
  /// Gives columns to what was learned since the last call, in the order of the places.
  /// @param added is called for each new column with its name and its number among those of this name.
  void Arrange(const std::function<void(const std::string& name, int occurrence)>& added);

  /// The number of the column of the next parameter.
  /// @throws std::out_of_range when it was not learned.
  std::size_t Of(std::string_view name);
  std::size_t Count() const { return count; }

 private:
  struct Name {
    std::size_t event = 0;             // in which it was met last
    std::size_t met = 0;               // how often in that event
    std::vector<std::size_t> columns;  // by occurrence
  };
  using Names = std::map<std::string, Name, std::less<>>;
  struct New {
    Place first;
    Names::value_type* name;
    std::size_t occurrence;
  };

  /// The occurrence of a name in the current event, from 0.
  std::size_t Meet(Name& name) const;

  Names names;
  std::vector<New> fresh;
  std::size_t event = 0;
  std::size_t count = 0;
};

}  // namespace Velora::Ts
