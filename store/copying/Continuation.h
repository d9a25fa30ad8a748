#pragma once

#include "store/database/Database.h"

namespace Velora::Store {

class Reader;
class Writer;

/// Whether a store has its own rows alone, with numbers that leave room for a shift.
bool CanBeTakenIn(const Reader& store);

/// @throws Error when the target is the store itself, or has its records under the numbers of another one.
void ExpectUnknownOrTakenIn(const Reader& from, Writer& to, Database::Kind kind);

/// The last row of each table that an earlier copy took over must be there still, and be the same.
/// @param number of the copied store in the target.
/// @throws Error
void ExpectContinuation(const Reader& from, const Reader& to, long long number);

}  // namespace Velora::Store
