#pragma once
// One connection to a catalogue's database, its transactions and its statements.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <string>
#include <vector>

#include "host/catalogue/server_address.h"
#include "host/catalogue/sql_trouble.h"

namespace zq::host {

/// Belongs to the thread that made it. What fails throws a CatalogueFailure, and the transaction that it was in is
/// rolled back by then.
class CatalogueConnection {
 public:
  /// A damaged file is opened for what can still be read of it.
  enum class FileMode { mustExist, mayBeCreated, damaged };

  /// How long to wait for other programs, in milliseconds.
  static constexpr int kPatience = 5000;

  CatalogueConnection(SqlDialect dialect, std::string where);
  ~CatalogueConnection();
  CatalogueConnection(const CatalogueConnection&) = delete;
  CatalogueConnection& operator=(const CatalogueConnection&) = delete;

  void openFile(const std::string& path, FileMode mode, int patience = kPatience);
  /// A file of its own that has no name and goes with the connection.
  void openScratch();
  void openServer(const ServerAddress& address, int patience = kPatience);

  SqlDialect dialect() const { return dialect_; }
  /// The catalogue's name in messages.
  const std::string& where() const { return where_; }

  /// A statement that has no values to fill in and no answer that matters.
  void run(const QString& sql);
  /// What would change the catalogue fails from here on.
  void forbidChanges();
  /// The first value of the first row of its answer.
  QVariant ask(const QString& sql);

  [[noreturn]] void fail(const QSqlError& error);

 private:
  friend class CatalogueTransaction;
  friend class CatalogueStatement;

  void openDatabase();
  void prepareFileSession();
  void prepareServerSession();
  /// Connects again when the connection to the server was lost.
  void reconnect();
  void rollBack();

  // Constant after construction.
  const SqlDialect dialect_;
  const std::string where_;
  const QString name_;

  QSqlDatabase database_;
  int patience_ = kPatience;
  bool inTransaction_ = false;
  bool wasLost_ = false;
};

/// Rolls back unless it was committed.
class CatalogueTransaction {
 public:
  /// A writing one has the catalogue to itself, as far as other writers go, from its beginning in a file, and from its
  /// first change of a row on a server. A reading one sees one state of the catalogue throughout.
  enum class Purpose { read, write };

  CatalogueTransaction(CatalogueConnection& connection, Purpose purpose);
  ~CatalogueTransaction();
  CatalogueTransaction(const CatalogueTransaction&) = delete;
  CatalogueTransaction& operator=(const CatalogueTransaction&) = delete;

  void commit();

 private:
  void begin();

  CatalogueConnection& connection_;
  const Purpose purpose_;
};

/// A prepared statement, with a ? for each value; run as often as needed. Its answer is given up when the next run
/// begins, and with the statement: an answer that is kept keeps the catalogue locked.
class CatalogueStatement {
 public:
  CatalogueStatement(CatalogueConnection& connection, const QString& sql);
  ~CatalogueStatement();
  CatalogueStatement(const CatalogueStatement&) = delete;
  CatalogueStatement& operator=(const CatalogueStatement&) = delete;

  template <typename... Values>
  CatalogueStatement& run(const Values&... values) {
    int position = 0;
    (query_.bindValue(position++, QVariant(values)), ...);
    execute();
    return *this;
  }

  CatalogueStatement& runWith(const std::vector<QVariant>& values) {
    int position = 0;
    for (const QVariant& value : values) query_.bindValue(position++, value);
    execute();
    return *this;
  }

  /// On to the next row of the answer; false behind the last one.
  bool next();
  QVariant value(int column) const { return query_.value(column); }
  std::int64_t integer(int column) const { return query_.value(column).toLongLong(); }
  std::string text(int column) const { return query_.value(column).toString().toStdString(); }
  std::int64_t rowsChanged() const { return query_.numRowsAffected(); }

 private:
  void execute();

  CatalogueConnection& connection_;
  QSqlQuery query_;
};

/// Throws a failure that says that `what` cannot be stored, when it is not UTF-8 or holds a zero.
QString storable(const std::string& text, const std::string& what);

}  // namespace zq::host
