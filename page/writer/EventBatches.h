#pragma once

#include "page/writer/Column.h"
#include "page/writer/RunEvents.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Velora::Page {

class KeptEvents;

/// The events of a run as columns of the page's data. Events of one shape are together: they have the same name, and
/// parameters of the same names and kinds.
class EventBatches {
 public:
  /// Called for each event that was read.
  using Step = std::function<void()>;

  /// @param start the time from which times are counted, in microseconds since 1970.
  EventBatches(const Store::Reader& store, long long root, const KeptEvents& kept, long long start, Step step);

  /// Appends the next batch of events of one shape. @return whether there was one.
  bool AppendBatch(std::string& json);
  /// Appends the shapes so far as a list. A shape is the name of the event, then name and kind of each parameter.
  void AppendShapes(std::string& json) const;

  /// The keys of the configurations of the events.
  const std::set<long long>& Configurations() const { return events.Configurations(); }

 private:
  struct Shape {
    std::size_t index = 0;
    std::size_t rows = 0;
    Column number, execution, at;
    std::vector<Column> values;
  };

  /// Reads events until there are enough for a batch. @return whether there was any.
  bool Fill();
  void Add(const Event& event);
  static void Move(Shape& shape, std::string& json);

  RunEvents events;
  const KeptEvents& kept;
  const long long start;
  const Step step;
  std::map<std::string, Shape> shapes;
  std::map<std::string, Shape>::iterator next = shapes.end();  // to be moved
};

}  // namespace Velora::Page
