#pragma once

#include "page/writer/Column.h"
#include "page/writer/RunEvents.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace Velora::Page {

class KeptEvents;

/// The events of a run as columns of the page's data: those of one shape, that is of one name and with parameters of
/// the same names and kinds, stand together.
class EventBatches {
 public:
  /// Told of each event that has been read.
  using Step = std::function<void()>;

  /// @param start what times are counted from, in microseconds since 1970.
  EventBatches(const Store::Reader& store, long long root, const KeptEvents& kept, long long start, Step step);

  /// Appends the next batch of one shape. @return whether there was one.
  bool AppendBatch(std::string& json);
  /// Appends the shapes so far as a list: of each the event's name, then name and kind of each parameter.
  void AppendShapes(std::string& json) const;

  /// Keys of the configurations that were in force.
  const std::set<long long>& Configurations() const { return events.Configurations(); }

 private:
  struct Shape {
    std::size_t index = 0;
    std::size_t rows = 0;
    Column number, execution, at;
    std::vector<Column> values;
  };

  /// Reads on until there is enough for a batch. @return whether there was anything.
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
