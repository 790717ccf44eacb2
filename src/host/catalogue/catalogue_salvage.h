#pragma once
// What can still be read of a catalogue's file that is damaged.

#include <memory>
#include <string>

#include "base/status.h"

namespace zq::host {

class CatalogueConnection;

/// Whether the database finds nothing wrong with the file, all of which is read for that. Throws a failure when it
/// cannot be opened for another reason.
bool isWhole(const std::string& path);

/// Tells that the file is damaged, how much of it can still be read, and how to save that.
Error damageOf(const std::string& path);

/// A catalogue of what can be read, in a scratch file, for reading only. A clip whose sequence cannot be read is in a
/// sequence, and a sequence whose tape cannot be read on a tape, that is named so. Throws a failure when nothing is
/// left.
std::unique_ptr<CatalogueConnection> salvagedCatalogue(const std::string& path);

}  // namespace zq::host
