#pragma once
// Makes windows and panels from interface files, as Qt Designer writes them (.ui).

#include <QString>
#include <memory>

#include "base/status.h"
#include "interface/interface.h"

namespace zq {

namespace platform {
class Runtime;
}

/// Loads `path`, a file or a resource (":/deckhand/interface/..."): makes Qt's own classes and ours by their names,
/// sets their properties and layouts, and then calls awakeFromNib() on each that has one, a parent before its children.
/// A file that cannot be read, is no interface file, or names a class that does not exist is an error that says which
/// and where. Main thread only.
Expected<std::unique_ptr<Interface>> loadInterface(const QString& path, platform::Runtime& runtime);

}  // namespace zq
