#include "host/catalogue/catalogue_connection.h"

#include <QByteArray>
#include <QStringDecoder>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <utility>

#include "host/catalogue/qt_silence.h"

namespace zq::host {
namespace {

constexpr int kConnectSeconds = 10;

QString freshName() {
  static std::atomic<int> last{0};
  return QStringLiteral("deckhand-catalogue-%1").arg(++last);
}

// As a URI the name says how the file is to be opened, and any byte may be in it.
QString fileUri(const std::string& path, CatalogueConnection::FileMode mode) {
  const std::string absolute = std::filesystem::absolute(path).string();
  const QByteArray bytes(absolute.data(), static_cast<qsizetype>(absolute.size()));
  const QString uri = QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding("/"));
  const bool mayBeCreated = mode == CatalogueConnection::FileMode::mayBeCreated;
  return uri + (mayBeCreated ? QStringLiteral("?mode=rwc") : QStringLiteral("?mode=rw"));
}

// In the form of the client library's connection strings, where a quote and a backslash have a backslash before them.
QString serverOptions(const ServerAddress& address) {
  QString text = QStringLiteral("application_name='deckhand'");
  bool hasTimeout = false;
  for (const auto& [name, value] : address.options) {
    QString quoted = QString::fromStdString(value);
    quoted.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('\''), QLatin1String("\\'"));
    text += QStringLiteral(";%1='%2'").arg(QString::fromStdString(name), quoted);
    hasTimeout = hasTimeout || name == "connect_timeout";
  }
  // A server that does not answer at all would otherwise be waited for for minutes.
  return hasTimeout ? text : text + QStringLiteral(";connect_timeout='%1'").arg(kConnectSeconds);
}

QString driverOf(SqlDialect dialect) {
  return dialect == SqlDialect::sqlite ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL");
}

}  // namespace

CatalogueConnection::CatalogueConnection(SqlDialect dialect, std::string where)
    : dialect_(dialect), where_(std::move(where)), name_(freshName()) {
  if (!QSqlDatabase::isDriverAvailable(driverOf(dialect_))) {
    const std::string package = dialect_ == SqlDialect::sqlite ? "libqt6sql6-sqlite" : "libqt6sql6-psql";
    throw CatalogueFailure{{"The catalogue " + where_ + " cannot be opened",
                            "Qt's " + driverOf(dialect_).toStdString() +
                                " database driver is not installed; in Debian it is the package " + package + "."}};
  }
  database_ = QSqlDatabase::addDatabase(driverOf(dialect_), name_);
}

CatalogueConnection::~CatalogueConnection() {
  rollBack();
  database_.close();
  database_ = QSqlDatabase();
  QSqlDatabase::removeDatabase(name_);
}

void CatalogueConnection::openFile(const std::string& path, FileMode mode, int patience) {
  patience_ = patience;
  database_.setDatabaseName(fileUri(path, mode));
  database_.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(patience));
  openDatabase();
  // So SQLite reads on where the file was cut off, or where its list of tables is wrong.
  if (mode == FileMode::damaged) run(QStringLiteral("PRAGMA writable_schema = ON"));
  prepareFileSession();
}

void CatalogueConnection::openScratch() {
  openDatabase();
  prepareFileSession();
}

void CatalogueConnection::openServer(const ServerAddress& address, int patience) {
  patience_ = patience;
  database_.setUserName(QString::fromStdString(address.user));
  database_.setPassword(QString::fromStdString(address.password));
  database_.setHostName(QString::fromStdString(address.host));
  database_.setPort(address.port == 0 ? -1 : address.port);
  database_.setDatabaseName(QString::fromStdString(address.database));
  database_.setConnectOptions(serverOptions(address));
  openDatabase();
  prepareServerSession();
}

void CatalogueConnection::openDatabase() {
  if (database_.open()) return;
  const QSqlError error = database_.lastError();
  if (dialect_ == SqlDialect::sqlite) fail(error);
  throw CatalogueFailure{
      {"The catalogue " + where_ + " cannot be reached",
       "The server says: " + reasonOf(error) + " Check the server, the database, the user and the password."},
      SqlTrouble::disconnected};
}

void CatalogueConnection::prepareFileSession() {
  // EXTRA is FULL and syncs the folder too, so that what was committed stays so when the power fails. The journal is
  // SQLite's own default: it works on shared disks too, and the catalogue is one file that can be copied.
  run(QStringLiteral("PRAGMA synchronous = EXTRA"));
  run(QStringLiteral("PRAGMA foreign_keys = ON"));
  // The file may come from anywhere.
  run(QStringLiteral("PRAGMA trusted_schema = OFF"));
  run(QStringLiteral("PRAGMA cell_size_check = ON"));
}

void CatalogueConnection::prepareServerSession() {
  // What the server notices in passing is not for the user's terminal.
  run(QStringLiteral("SET client_min_messages = error"));
  run(QStringLiteral("SET lock_timeout = %1").arg(std::max(patience_, 1)));
  run(QStringLiteral("SET search_path = deckhand"));
}

void CatalogueConnection::reconnect() {
  if (!wasLost_) return;
  database_.close();
  openDatabase();
  prepareServerSession();
  wasLost_ = false;
}

void CatalogueConnection::run(const QString& sql) {
  QSqlQuery query(database_);
  if (!query.exec(sql)) fail(query.lastError());
}

void CatalogueConnection::forbidChanges() {
  run(dialect_ == SqlDialect::sqlite ? QStringLiteral("PRAGMA query_only = ON")
                                     : QStringLiteral("SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY"));
}

QVariant CatalogueConnection::ask(const QString& sql) {
  QSqlQuery query(database_);
  query.setForwardOnly(true);
  if (!query.exec(sql)) fail(query.lastError());
  if (query.next()) return query.value(0);
  if (query.lastError().isValid()) fail(query.lastError());
  return {};
}

// Rolls back at once, not when the stack is unwound: PostgreSQL does not even let go of a prepared statement in a
// transaction that failed.
void CatalogueConnection::fail(const QSqlError& error) {
  const SqlTrouble trouble = troubleOf(error, dialect_);
  if (trouble == SqlTrouble::disconnected) {
    wasLost_ = true;
    inTransaction_ = false;
  }
  rollBack();
  throw CatalogueFailure{errorOf(trouble, error, dialect_, where_), trouble};
}

// A transaction that cannot be rolled back is undone by the database itself: when the connection is closed, or by the
// next program that opens the file.
void CatalogueConnection::rollBack() {
  if (!std::exchange(inTransaction_, false)) return;
  QSqlQuery(database_).exec(QStringLiteral("ROLLBACK"));
}

CatalogueTransaction::CatalogueTransaction(CatalogueConnection& connection, Purpose purpose)
    : connection_(connection), purpose_(purpose) {
  connection_.reconnect();
  begin();
  connection_.inTransaction_ = true;
}

void CatalogueTransaction::begin() {
  const bool reads = purpose_ == Purpose::read;
  if (connection_.dialect() == SqlDialect::sqlite) {
    // A transaction that begins by reading and then writes could fail half way; IMMEDIATE waits here for its turn.
    connection_.run(reads ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE"));
  } else {
    connection_.run(reads ? QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY")
                          : QStringLiteral("BEGIN ISOLATION LEVEL READ COMMITTED"));
  }
}

CatalogueTransaction::~CatalogueTransaction() {
  connection_.rollBack();
}

void CatalogueTransaction::commit() {
  try {
    connection_.run(QStringLiteral("COMMIT"));
  } catch (CatalogueFailure& failure) {
    if (failure.trouble == SqlTrouble::disconnected && purpose_ == Purpose::write) {
      failure.error.informative += " Whether the change was made is not known: look before you make it again.";
    }
    throw;
  }
  connection_.inTransaction_ = false;
}

CatalogueStatement::CatalogueStatement(CatalogueConnection& connection, const QString& sql)
    : connection_(connection), query_(connection.database_) {
  query_.setForwardOnly(true);
  if (!query_.prepare(sql)) connection_.fail(query_.lastError());
}

CatalogueStatement::~CatalogueStatement() {
  if (!connection_.wasLost_) return;
  // The server has dropped the statement already, which Qt would complain about.
  const QtSilence silence;
  query_.clear();
}

void CatalogueStatement::execute() {
  query_.finish();
  if (query_.exec()) return;
  const QSqlError error = query_.lastError();
  query_.finish();
  connection_.fail(error);
}

bool CatalogueStatement::next() {
  if (query_.next()) return true;
  const QSqlError error = query_.lastError();
  query_.finish();
  if (error.isValid()) connection_.fail(error);
  return false;
}

QString storable(const std::string& text, const std::string& what) {
  using Flag = QStringConverter::Flag;
  QStringDecoder decoder(QStringConverter::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
  QString decoded = decoder.decode(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
  if (!decoder.hasError() && text.find('\0') == std::string::npos)
    return decoded.isNull() ? QStringLiteral("") : decoded;
  throw CatalogueFailure{{what + " cannot be kept in the catalogue: " + decoded.toStdString(),
                          "It is not UTF-8 text, or it has a zero in it. Give it another name."}};
}

}  // namespace zq::host
