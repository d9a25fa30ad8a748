#pragma once

#include "Known.h"
#include "store/recording/Writer.h"

#include <memory>
#include <utility>

namespace Quor::TolvaServices::Local {

/// A store that a session has opened, and what it has learned over this connection.
struct OpenStore {
  explicit OpenStore(std::unique_ptr<Velora::Store::Writer> opened) : writer(std::move(opened)) {}

  Velora::Store::Connection& Sql() const { return writer->Sql(); }

  const std::unique_ptr<Velora::Store::Writer> writer;
  Known known;
};

}  // namespace Quor::TolvaServices::Local
