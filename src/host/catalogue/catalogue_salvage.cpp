#include "host/catalogue/catalogue_salvage.h"

#include <QSqlError>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>

#include "host/catalogue/catalogue_connection.h"
#include "host/catalogue/catalogue_schema.h"
#include "host/catalogue/clip_row.h"

// A table is read in the order of its rows' numbers. Where its file is damaged, reading fails, and goes on behind the
// next number, until it succeeds again: a page of the file holds some dozen clips.

namespace zq::host {
namespace {

using FileMode = CatalogueConnection::FileMode;

// What is behind so many row numbers that cannot be read is given up. A page that leads to others stands for thousands.
constexpr std::int64_t kLongestGap = 200'000;

constexpr char kAdvice[] =
    "\"deckhand catalogue export\" still reads what can be read; import that into a new catalogue. The damaged file "
    "was left as it is.";

std::unique_ptr<CatalogueConnection> openedDamaged(const std::string& path) {
  auto connection = std::make_unique<CatalogueConnection>(SqlDialect::sqlite, path);
  connection->openFile(path, FileMode::damaged);
  connection->forbidChanges();
  return connection;
}

/// No row of any table has a greater number.
std::int64_t lastRowOf(CatalogueConnection& connection) {
  try {
    return connection.ask(QStringLiteral("SELECT max(seq) FROM sqlite_sequence")).toLongLong();
  } catch (const CatalogueFailure&) {
    return std::numeric_limits<std::int64_t>::max();
  }
}

/// Calls `each` with each row of the table that can be read: its number, then its columns.
template <typename Each>
void readAround(CatalogueConnection& connection, const QString& table, const Each& each) {
  const std::int64_t last = lastRowOf(connection);
  CatalogueStatement rows(connection, QStringLiteral("SELECT rowid, * FROM %1 NOT INDEXED WHERE rowid >= ? "
                                                     "ORDER BY rowid")
                                          .arg(table));
  std::int64_t next = 1;
  for (std::int64_t failures = 0; next <= last && failures < kLongestGap;) {
    try {
      rows.run(QVariant(static_cast<qlonglong>(next)));
      while (rows.next()) {
        next = rows.integer(0) + 1;
        failures = 0;
        each(rows);
      }
      return;
    } catch (const CatalogueFailure& failure) {
      if (failure.trouble != SqlTrouble::damaged) throw;
      ++next;
      ++failures;
    }
  }
}

std::int64_t countReadable(CatalogueConnection& connection, const QString& table) {
  std::int64_t count = 0;
  readAround(connection, table, [&](const CatalogueStatement&) { ++count; });
  return count;
}

// As the tables were made, so that each one comes before those that refer to it.
QStringList tablesOf(CatalogueConnection& connection) {
  QStringList tables;
  CatalogueStatement names(connection, QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name "
                                                      "NOT LIKE 'sqlite_%' ORDER BY rowid"));
  names.run();
  while (names.next()) tables.append(names.value(0).toString());
  return tables;
}

QStringList columnsOf(CatalogueConnection& connection, const QString& table) {
  QStringList columns;
  CatalogueStatement names(connection, QStringLiteral("SELECT name FROM pragma_table_info(?)"));
  names.run(table);
  while (names.next()) columns.append(names.value(0).toString());
  return columns;
}

void copyTable(CatalogueConnection& from, CatalogueConnection& to, const QString& table) {
  const QStringList columns = columnsOf(to, table);
  QStringList marks;
  marks.fill(QStringLiteral("?"), columns.size());
  CatalogueStatement insert(to, QStringLiteral("INSERT OR IGNORE INTO %1 (%2) VALUES (%3)")
                                    .arg(table, columns.join(QLatin1Char(',')), marks.join(QLatin1Char(','))));
  readAround(from, table, [&](const CatalogueStatement& row) {
    std::vector<QVariant> values;
    for (int column = 1; column <= columns.size(); ++column) values.push_back(row.value(column));
    insert.runWith(values);
  });
}

// What the damage has cut off gets something to hang on.
void adoptOrphans(CatalogueConnection& connection) {
  for (const char* statement : {
           "INSERT INTO tapes (id, name) SELECT coalesce((SELECT max(id) FROM tapes), 0) + "
           "coalesce((SELECT max(tape_id) FROM sequences), 0) + 1, '(tape unreadable)' "
           "WHERE EXISTS (SELECT 1 FROM clips WHERE sequence_id NOT IN (SELECT id FROM sequences))",
           "INSERT INTO sequences (id, tape_id, name) SELECT DISTINCT sequence_id, (SELECT max(id) FROM tapes), "
           "'(sequence unreadable)' FROM clips WHERE sequence_id NOT IN (SELECT id FROM sequences)",
           "INSERT INTO tapes (id, name) SELECT DISTINCT tape_id, '(tape ' || tape_id || ' unreadable)' "
           "FROM sequences WHERE tape_id NOT IN (SELECT id FROM tapes)",
           "DELETE FROM posters WHERE clip_id NOT IN (SELECT id FROM clips)",
       }) {
    connection.run(QLatin1String(statement));
  }
}

// Bytes that were changed within a date or a timecode are not to keep the rest of the tape from being read.
void clearNonsense(CatalogueConnection& connection) {
  QStringList ids;
  CatalogueStatement clips(connection, QStringLiteral("SELECT ") + clipColumns() + QStringLiteral(" FROM clips"));
  clips.run();
  while (clips.next()) {
    try {
      static_cast<void>(readClip(clips, connection.where()));
    } catch (const CatalogueFailure&) {
      ids.append(QString::number(clips.integer(0)));
    }
  }
  CatalogueStatement clear(connection, QStringLiteral("UPDATE clips SET recording_date = NULL, start_timecode = NULL, "
                                                      "end_timecode = NULL, duration = NULL WHERE id = ?"));
  for (const QString& id : ids) clear.run(id.toLongLong());
}

void copyReadable(CatalogueConnection& from, CatalogueConnection& to) {
  // Off while parents may be missing; it cannot be switched within a transaction.
  to.run(QStringLiteral("PRAGMA foreign_keys = OFF"));
  CatalogueTransaction transaction(to, CatalogueTransaction::Purpose::write);
  for (const QString& table : tablesOf(to)) copyTable(from, to, table);
  adoptOrphans(to);
  transaction.commit();
  to.run(QStringLiteral("PRAGMA foreign_keys = ON"));
}

std::string counted(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace

bool isWhole(const std::string& path) {
  try {
    CatalogueConnection connection(SqlDialect::sqlite, path);
    connection.openFile(path, FileMode::mustExist);
    return connection.ask(QStringLiteral("PRAGMA integrity_check(1)")).toString() == QLatin1String("ok");
  } catch (const CatalogueFailure& failure) {
    if (failure.trouble != SqlTrouble::damaged) throw;
    return false;
  }
}

Error damageOf(const std::string& path) {
  const std::string message = "The catalogue " + path + " is damaged";
  try {
    const std::unique_ptr<CatalogueConnection> connection = openedDamaged(path);
    const std::int64_t tapes = countReadable(*connection, QStringLiteral("tapes"));
    const std::int64_t clips = countReadable(*connection, QStringLiteral("clips"));
    return {message, counted(tapes, "tape") + " and " + counted(clips, "clip") + " can still be read. " + kAdvice};
  } catch (const CatalogueFailure& failure) {
    if (failure.trouble == SqlTrouble::locked || failure.trouble == SqlTrouble::readOnly) return failure.error;
    return {message, "Nothing of it can be read. Go back to a copy of it; the damaged file was left as it is."};
  }
}

std::unique_ptr<CatalogueConnection> salvagedCatalogue(const std::string& path) {
  const std::unique_ptr<CatalogueConnection> damaged = openedDamaged(path);
  auto salvaged = std::make_unique<CatalogueConnection>(SqlDialect::sqlite, path + " (damaged)");
  salvaged->openScratch();
  const std::span<const SchemaStep> schema = catalogueSchema();
  prepareSchema(*salvaged, true, schema.first(static_cast<std::size_t>(versionOf(*damaged, schema))));
  try {
    copyReadable(*damaged, *salvaged);
  } catch (const CatalogueFailure&) {
    // The tables themselves are gone.
    throw CatalogueFailure{damageOf(path), SqlTrouble::damaged};
  }
  prepareSchema(*salvaged, false);
  clearNonsense(*salvaged);
  salvaged->forbidChanges();
  return salvaged;
}

}  // namespace zq::host
