#include "host/catalogue/sql_trouble.h"

#include <QString>
#include <string_view>

namespace zq::host {
namespace {

// SQLite's result codes. The low byte is the kind, the rest says more.
SqlTrouble sqliteTrouble(int code) {
  constexpr int kReadOnlyFolder = 8 | (6 << 8);
  if (code == kReadOnlyFolder) return SqlTrouble::readOnly;
  switch (code & 0xff) {
    case 5:  // SQLITE_BUSY
    case 6:  // SQLITE_LOCKED
      return SqlTrouble::locked;
    case 3:  // SQLITE_PERM
    case 8:  // SQLITE_READONLY
      return SqlTrouble::readOnly;
    case 10:  // SQLITE_IOERR
      return SqlTrouble::unreadable;
    case 11:  // SQLITE_CORRUPT
      return SqlTrouble::damaged;
    case 13:  // SQLITE_FULL
      return SqlTrouble::full;
    case 14:  // SQLITE_CANTOPEN
      return SqlTrouble::unopenable;
    case 26:  // SQLITE_NOTADB
      return SqlTrouble::noDatabase;
    default:
      return SqlTrouble::other;
  }
}

// PostgreSQL's SQLSTATE: the first two characters are the class.
SqlTrouble postgresqlTrouble(std::string_view state) {
  if (state == "40001" || state == "40P01") return SqlTrouble::conflict;
  if (state == "55P03") return SqlTrouble::locked;
  if (state == "25006" || state == "42501") return SqlTrouble::readOnly;
  if (state == "53100") return SqlTrouble::full;
  if (state == "58030") return SqlTrouble::unreadable;
  if (state == "XX001" || state == "XX002") return SqlTrouble::damaged;
  if (state.starts_with("08") || state.starts_with("57P")) return SqlTrouble::disconnected;
  return SqlTrouble::other;
}

}  // namespace

std::string reasonOf(const QSqlError& error) {
  std::string reason = error.databaseText().isEmpty() ? error.driverText().simplified().toStdString()
                                                      : error.databaseText().simplified().toStdString();
  if (!reason.ends_with('.') && !reason.ends_with('?')) reason.push_back('.');
  return reason;
}

SqlTrouble troubleOf(const QSqlError& error, SqlDialect dialect) {
  if (dialect == SqlDialect::sqlite) return sqliteTrouble(error.nativeErrorCode().toInt());
  // Without a state it is the client library that speaks: the server is gone.
  const std::string state = error.nativeErrorCode().toStdString();
  return state.empty() ? SqlTrouble::disconnected : postgresqlTrouble(state);
}

Error errorOf(SqlTrouble trouble, const QSqlError& error, SqlDialect dialect, const std::string& where) {
  const std::string reason = reasonOf(error);
  switch (trouble) {
    case SqlTrouble::locked:
    case SqlTrouble::conflict:
      return {
          "Another program is writing to the catalogue " + where,
          "It was waited for, in vain; nothing was changed. Let the other program finish, or end it, and try again."};
    case SqlTrouble::readOnly:
      return {"The catalogue " + where + " cannot be written to",
              std::string(dialect == SqlDialect::sqlite ? "The file or its folder can only be read"
                                                        : "Its user may only read there") +
                  ". Get the right to write there, or use another catalogue. The database says: " + reason};
    case SqlTrouble::unopenable:
      return {"The catalogue " + where + " cannot be opened, or not be written to",
              "Check that you may read and write the file and its folder. The database says: " + reason};
    case SqlTrouble::full:
      return {"The catalogue " + where + " has no room to grow", "The disk is full. Make room and try again."};
    case SqlTrouble::unreadable:
      return {"The disk failed under the catalogue " + where,
              "The system says: " + reason + " Check the disk, and copy the catalogue to another one."};
    case SqlTrouble::damaged:
      return {"The catalogue " + where + " is damaged", reason};
    case SqlTrouble::noDatabase:
      // Its first bytes are a database's, or it would not have come this far.
      return {where + " is no Deckhand catalogue, or a damaged one",
              "Its beginning makes no sense. Check the path, or go back to a copy of it."};
    case SqlTrouble::disconnected:
      return {"The connection to the catalogue " + where + " failed", "The server says: " + reason};
    case SqlTrouble::other:
      break;
  }
  return {"The catalogue " + where + " could not be used", "The database says: " + reason};
}

}  // namespace zq::host
