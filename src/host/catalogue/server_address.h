#pragma once
// Where a catalogue on a PostgreSQL server is, from its URL.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/status.h"

namespace zq::host {

/// What is empty, or 0, is left to the server's own client library: its environment variables and password file.
struct ServerAddress {
  std::string user;
  std::string password;
  /// A name, an address, or the folder of the server's socket.
  std::string host;
  int port = 0;
  std::string database;
  /// Options of the connection, as the client library names them.
  std::vector<std::pair<std::string, std::string>> options;

  /// As a URL without the password, for messages.
  std::string shown() const;
};

/// "postgresql://", or the "postgres://" that it is also written as.
bool isServerUrl(std::string_view text);

/// postgresql://[user[:password]@][host][:port]/database[?option=value[&...]], each part percent-encoded. The options
/// host, port, user and password stand for the parts of that name: a socket's folder is given as ?host=/folder.
Expected<ServerAddress> parseServerUrl(std::string_view url);

}  // namespace zq::host
