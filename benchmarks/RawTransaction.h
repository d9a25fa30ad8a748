#pragma once

#include <libpq-fe.h>

#include <memory>
#include <string>

/// The least that storing the benchmark's event on a server takes: the same rows in the same tables, through the
/// client library, with prepared statements, and with the commit in the same round trip.
class RawTransaction {
 public:
  /// @param address of a store that has this execution.
  RawTransaction(const std::string& address, const std::string& execution);

  void SaveEvent();

 private:
  void Expect(bool good);
  std::string Ask(const std::string& statement);

  std::unique_ptr<PGconn, decltype(&PQfinish)> connection{nullptr, &PQfinish};
  std::string executionKey, sessionKey;
};
