#pragma once
// How named configurations are printed.

#include <vector>

#include "host/backend_module.h"
#include "host/compression_menu.h"
#include "host/stored_configuration.h"

namespace zq::host {

void printList(const std::vector<StoredConfiguration>& configurations, const CompressionMenu& menu);
/// {"configurations": [{"name", "compression"}]}
void printListJson(const std::vector<StoredConfiguration>& configurations, const CompressionMenu& menu);
/// All that one says.
void printConfiguration(const StoredConfiguration& configuration, BackendModule& module);

}  // namespace zq::host
