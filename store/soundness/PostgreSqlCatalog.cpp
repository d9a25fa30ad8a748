#include "store/soundness/PostgreSqlCatalog.h"

#include "store/reading/Rows.h"

#include <set>
#include <utility>

namespace Velora::Store {

namespace {

// Partitions are described by what they have in common: YYYYMM replaces their month.
constexpr const char* relations = R"(
    WITH store AS (
      SELECT n.oid, t.relowner AS owner, regexp_replace(quote_ident(n.nspname), '(\W)', '\\\1', 'g') AS name
      FROM pg_namespace n JOIN pg_class t ON t.relnamespace = n.oid AND t.relname = 'ts_schema'
      WHERE n.nspname = current_schema()),
    relations AS (
      SELECT c.*, CAST(CAST(c.oid AS regclass) AS text) AS name, CAST(CAST(p.oid AS regclass) AS text) AS parent,
             CASE c.relkind WHEN 'v' THEN 'view' WHEN 'S' THEN 'sequence' ELSE 'table' END AS kind,
             CASE WHEN c.relispartition
               THEN CAST(substring(c.relname, '^(?:events|parameters)_(\d{6})$') AS integer) END AS month
      FROM store s
      JOIN pg_class c ON c.relkind IN ('r', 'p', 'f', 'v', 'S')
      LEFT JOIN pg_inherits i ON i.inhrelid = c.oid
      LEFT JOIN pg_class p ON p.oid = i.inhparent
      WHERE c.relnamespace = s.oid OR p.relnamespace = s.oid),
    checks AS (
      SELECT t.oid, tgisinternal AND proname LIKE 'RI\_FKey\_%' AND pronamespace = CAST('pg_catalog' AS regnamespace)
             AS ofkey
      FROM pg_trigger t JOIN pg_proc f ON f.oid = tgfoid),
    )";

// Each line has what is wrong if a new store does not have it. Names of indexes and constraints do not matter. Triggers
// that check foreign keys have numbers from the server, so they are only counted, without those of tables outside the
// store that refer to it.
constexpr const char* linesOfParts = R"(
    lines (oid, part, definition, harm) AS (
      SELECT oid, kind, concat_ws(' ', relpersistence, relkind),
             'does not belong to a TS store, and its rows appear in ' || parent
      FROM relations WHERE kind = 'table'
      UNION ALL
      SELECT oid, kind, concat_ws(' ', pg_get_viewdef(oid), reloptions, (SELECT string_agg(CAST(ev_enabled AS text), '')
             FROM pg_rewrite WHERE ev_class = r.oid AND rulename = '_RETURN')), NULL
      FROM relations r WHERE kind = 'view'
      UNION ALL
      SELECT oid, kind, concat_ws(' ', relpersistence, format_type(seqtypid, NULL), seqstart, seqincrement, seqmin,
             seqmax, seqcache, seqcycle, (SELECT CAST(CAST(refobjid AS regclass) AS text) || refobjsubid FROM pg_depend
             WHERE classid = CAST('pg_class' AS regclass) AND objid = r.oid AND deptype IN ('a', 'i'))), NULL
      FROM relations r JOIN pg_sequence ON seqrelid = oid
      UNION ALL
      SELECT oid, 'owner of', CASE WHEN relowner <> (SELECT owner FROM store) THEN pg_get_userbyid(relowner) END, NULL
      FROM relations
      UNION ALL
      SELECT oid, 'row-level security of', concat_ws(' ', relrowsecurity, relforcerowsecurity), NULL
      FROM relations WHERE kind = 'table'
      UNION ALL
      SELECT oid, 'place of', concat_ws(' ', parent, pg_get_expr(relpartbound, oid), pg_get_partkeydef(oid)), NULL
      FROM relations WHERE kind = 'table'
      UNION ALL
      SELECT attrelid, 'column ' || attname || ' of', concat_ws(' ', format_type(atttypid, atttypmod),
             CASE WHEN attcollation <> 0 THEN CAST(attcollation AS regcollation) END, attnotnull, attidentity,
             attgenerated, pg_get_expr(adbin, adrelid)), 'does not belong to a TS store'
      FROM relations r JOIN pg_attribute ON attrelid = r.oid
      LEFT JOIN pg_attrdef ON adrelid = attrelid AND adnum = attnum
      WHERE kind = 'table' AND attnum > 0 AND NOT attisdropped
      UNION ALL
      SELECT conrelid, 'constraint ' || pg_get_constraintdef(k.oid, true) || ' on', '',
             'does not belong to a TS store and may refuse what hosts record'
      FROM relations r JOIN pg_constraint k ON conrelid = r.oid
      WHERE contype IN ('c', 'f', 'p', 'u', 'x') AND confrelid NOT IN (SELECT inhrelid FROM pg_inherits)
      UNION ALL
      SELECT indrelid, concat_ws(' ', CASE WHEN indisunique THEN 'unique' END, 'index',
             substring(pg_get_indexdef(indexrelid, 0, true), ' USING (.*)$'), 'on'),
             concat_ws(' ', indisvalid, indisready, indislive, indimmediate),
             CASE WHEN indisunique OR indexprs IS NOT NULL OR indpred IS NOT NULL
               THEN 'does not belong to a TS store and may refuse what hosts record' END
      FROM relations r JOIN pg_index ON indrelid = r.oid
      UNION ALL
      SELECT tgrelid, 'trigger ' || tgname || ' on',
             concat_ws(' ', pg_get_triggerdef(t.oid, true), tgenabled IN ('O', 'A')),
             'does not belong to a TS store and may change what is recorded'
      FROM relations r JOIN pg_trigger t ON tgrelid = r.oid JOIN checks c ON c.oid = t.oid AND NOT ofkey
      UNION ALL
      SELECT tgrelid, 'checking of foreign keys of', CAST(COUNT(*) AS text), NULL
      FROM relations r JOIN pg_trigger t ON tgrelid = r.oid JOIN checks c ON c.oid = t.oid AND ofkey
      JOIN pg_constraint k ON k.oid = tgconstraint AND conrelid = tgrelid
      WHERE tgenabled IN ('O', 'A') GROUP BY tgrelid
      UNION ALL
      SELECT ev_class, 'rule ' || rulename || ' on', concat_ws(' ', pg_get_ruledef(w.oid, true), ev_enabled),
             'does not belong to a TS store and may change what is recorded'
      FROM relations r JOIN pg_rewrite w ON ev_class = r.oid WHERE kind <> 'view' OR rulename <> '_RETURN'
      UNION ALL
      SELECT polrelid, 'policy ' || polname || ' on', concat_ws(' ', polcmd, polpermissive, polroles,
             pg_get_expr(polqual, polrelid), pg_get_expr(polwithcheck, polrelid)),
             'does not belong to a TS store and may hide or refuse records'
      FROM relations r JOIN pg_policy ON polrelid = r.oid))";

// Functions name their schema. While an index is being rebuilt there are two equal ones; the valid one comes last and
// counts.
constexpr const char* answer = R"(
    SELECT COALESCE(replace(name, CAST(month AS text), 'YYYYMM'), name), COALESCE(CAST(month AS text), ''),
           COALESCE(replace(part, CAST(month AS text), 'YYYYMM'), part),
           COALESCE(replace(replace(definition, CAST(month AS text), 'YYYYMM'), CAST(month + 1 AS text), 'the next'),
                    definition, ''),
           COALESCE(harm, ''), COALESCE(parent, '')
    FROM lines JOIN relations USING (oid)
    UNION ALL
    SELECT '', '', 'function ' || CAST(CAST(f.oid AS regprocedure) AS text), regexp_replace(concat_ws(' ',
             pg_get_function_arguments(f.oid), pg_get_function_result(f.oid), prokind, prosecdef, provolatile,
             proisstrict, proleakproof, proparallel, lanname, COALESCE(pg_get_function_sqlbody(f.oid), prosrc),
             array_to_string(proconfig, ' '), CASE WHEN proowner <> owner THEN pg_get_userbyid(proowner) END),
             '(^|[^\w"$])' || s.name || '(?=[.,''])', '\1SCHEMA', 'g'),
           '', ''
    FROM store s JOIN pg_proc f ON pronamespace = s.oid JOIN pg_language l ON l.oid = prolang
    ORDER BY 4)";

constexpr const char* anyMonth = "YYYYMM";

std::string InWords(const CatalogEntry& entry, const std::string& part) {
  std::string words = part + (entry.relation.empty() ? "" : " " + entry.relation);
  for (std::size_t at = 0; (at = words.find(anyMonth, at)) != std::string::npos && !entry.month.empty();) {
    words.replace(at, std::char_traits<char>::length(anyMonth), entry.month);
  }
  return words;
}

/// The line of the relation itself, to which all others belong.
const char* KindOf(const CatalogParts& parts) {
  for (const char* kind : {"table", "view", "sequence"}) {
    if (parts.count(kind) > 0) {
      return kind;
    }
  }
  return "";
}

class Comparison {
 public:
  void Compare(const CatalogEntry& entry, const CatalogParts& found, const CatalogParts& expected) {
    const std::string parent = ParentOf(found);
    for (const auto& [part, line] : expected) {
      const auto same = found.find(part);
      if (same == found.end()) {
        Find(entry, parent, part, "is missing");
      } else if (same->second.definition != line.definition) {
        Find(entry, parent, part, "is not as in a new store");
      }
    }
    for (const auto& [part, line] : found) {
      if (expected.count(part) == 0 && !line.foreign.empty()) {
        Find(entry, parent, part, line.foreign);
      }
    }
  }

  /// Reports a finding once for a table and not again for its partitions, which come after it.
  void Find(const CatalogEntry& entry, const std::string& parent, const std::string& part, const std::string& wrong) {
    if (known.count({parent, part}) == 0) {
      findings.push_back(InWords(entry, part) + ' ' + wrong);
    }
    known.emplace(entry.relation, part);
  }

  static std::string ParentOf(const CatalogParts& parts) {
    const auto table = parts.find("table");
    return table == parts.end() ? "" : table->second.parent;
  }

  std::vector<std::string> findings;

 private:
  std::set<std::pair<std::string, std::string>> known;
};

}  // namespace

Catalog ReadCatalog(Connection& connection) {
  Catalog catalog;
  for (Rows rows(connection, std::string(relations) + linesOfParts + answer); rows.Next();) {
    const auto text = [&rows](int column) { return std::string(rows.Text(column)); };
    catalog[{text(0), text(1)}][text(2)] = {text(3), text(4), text(5)};
  }
  return catalog;
}

std::vector<std::string> Differences(const Catalog& found, const Catalog& expected) {
  std::map<std::string, const CatalogParts*> kinds;  // with one for all months
  for (const auto& [entry, parts] : expected) {
    kinds[entry.relation] = &parts;
  }
  Comparison comparison;
  for (const auto& [entry, parts] : expected) {
    const auto same = found.find(entry);
    const std::string kind = KindOf(parts);
    if (entry.month.empty() && (same == found.end() || KindOf(same->second) != kind)) {
      comparison.Find(entry, "", kind, "is missing");
    }
  }
  for (const auto& [entry, parts] : found) {
    const auto kind = kinds.find(entry.relation);
    const std::string itself = KindOf(parts);
    if (kind == kinds.end()) {
      if (const std::string parent = Comparison::ParentOf(parts); !parent.empty() && kinds.count(parent) > 0) {
        comparison.Find(entry, parent, itself, parts.at(itself).foreign);
      }
    } else if (itself == KindOf(*kind->second)) {
      comparison.Compare(entry, parts, *kind->second);
    }
  }
  return comparison.findings;
}

}  // namespace Velora::Store
