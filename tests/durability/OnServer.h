#pragma once

/// What the question for the records of a store (in Comparison.h) takes for granted, on SQLite.
constexpr const char* forComparison =
    "CREATE AGGREGATE group_concat(text, text) (SFUNC = string_agg_transfn, STYPE = internal, FINALFUNC = "
    "string_agg_finalfn); CREATE FUNCTION printf(text, double precision) RETURNS text LANGUAGE sql AS 'SELECT "
    "CAST($2 AS text)'";
