#pragma once
// What a database says went wrong, told so that a user can act on it.

#include <QSqlError>
#include <string>

#include "base/status.h"

namespace zq::host {

enum class SqlDialect { sqlite, postgresql };

enum class SqlTrouble {
  other,
  locked,    // another program holds the catalogue for too long
  conflict,  // two stations got in each other's way; the transaction may be tried again
  readOnly,
  unopenable,  // the file, or one that the database needs beside it
  full,
  unreadable,  // the disk failed
  damaged,
  noDatabase,  // the file is of another kind
  disconnected,
};

/// Thrown by what is in this folder, and only seen there: the operations of the store return the error.
struct CatalogueFailure {
  Error error;
  SqlTrouble trouble = SqlTrouble::other;
};

/// What the database says, as a sentence.
std::string reasonOf(const QSqlError& error);
SqlTrouble troubleOf(const QSqlError& error, SqlDialect dialect);
/// `where` is the file, or the server and its database.
Error errorOf(SqlTrouble trouble, const QSqlError& error, SqlDialect dialect, const std::string& where);

}  // namespace zq::host
