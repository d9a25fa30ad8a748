#pragma once

#include "exporting/Selection.h"
#include "store/reading/Reader.h"

namespace Velora::Ts {

// The formats of an export; each writes a selection to standard output.

/// The canonical form, a line of JSON for each record: docs/record-format.md.
void WriteRecords(const Store::Reader& store, const Selection& selection, const Step& step);

/// Comma-separated values: a row for each event, a column for each parameter.
void WriteCsv(const Store::Reader& store, const Selection& selection, const Step& step);

/// Trace events, for timeline viewers.
void WriteTrace(const Store::Reader& store, const Selection& selection, const Step& step);

}  // namespace Velora::Ts
