#pragma once

#include <soci/soci.h>

#include <string>

namespace Quor::TolvaServices::Local {

/// Runs a statement once, with what it is bound to: soci::use and soci::into, in the order of their places in the text.
/// Used instead of SOCI's "sql << text, soci::use(...)", which runs in a destructor: also when an element could not be
/// made, without it then, and ending the process with what that raises.
/// @return whether there was a row.
template <typename... Elements>
bool Execute(soci::session& sql, const std::string& text, const Elements&... elements) {
  soci::statement statement(sql);
  (statement.exchange(elements), ...);
  statement.alloc();
  statement.prepare(text, soci::details::st_one_time_query);  // else a server is asked three times
  statement.define_and_bind();
  return statement.execute(true);
}

}  // namespace Quor::TolvaServices::Local
