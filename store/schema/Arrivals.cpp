#include "store/schema/Arrivals.h"

namespace Velora::Store {

const Table& Arrivals() {
  static const Table table = {.name = "arrivals",
                              .record = "",
                              .columns = {{"store", Type::Integer, "the number of the other store"},
                                          {"at", Type::Text, "when there was contact, by the clock of this store"},
                                          {"waiting", Type::Integer, "how many rows waited there"},
                                          {.name = "waiting_since",
                                           .type = Type::Text,
                                           .meaning = "since when; null if none",
                                           .mayBeNull = true}},
                              .primaryKey = {"store"},
                              .since = 3};
  return table;
}

}  // namespace Velora::Store
