#include "host/catalogue/sql_catalogue.h"

#include <QString>
#include <algorithm>
#include <span>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "host/catalogue/catalogue_salvage.h"
#include "host/catalogue/clip_row.h"

namespace zq::host {
namespace {

using Purpose = CatalogueTransaction::Purpose;

// So many ids to a statement.
constexpr std::size_t kIdsAtOnce = 500;
constexpr int kTries = 5;

constexpr char kTapeSummaries[] = R"(
SELECT tapes.id, tapes.name, count(sequences.id),
       CAST(coalesce(sum(counts.clips), 0) AS BIGINT), CAST(coalesce(sum(counts.marked), 0) AS BIGINT),
       CAST(coalesce(sum(counts.recaptured), 0) AS BIGINT), CAST(coalesce(sum(counts.trashed), 0) AS BIGINT)
FROM tapes
LEFT JOIN sequences ON sequences.tape_id = tapes.id
LEFT JOIN (SELECT sequence_id, count(*) AS clips, sum(marked) AS marked, sum(recaptured) AS recaptured,
                  sum(trashed) AS trashed
           FROM clips GROUP BY sequence_id) AS counts ON counts.sequence_id = sequences.id
GROUP BY tapes.id, tapes.name
ORDER BY tapes.name
)";

QVariant number(std::int64_t value) {
  return QVariant(static_cast<qlonglong>(value));
}

/// "1,2,3", for IN (...).
QString list(std::span<const std::int64_t> ids) {
  QString text;
  for (const std::int64_t id : ids) {
    if (!text.isEmpty()) text += QLatin1Char(',');
    text += QString::number(id);
  }
  return text;
}

/// Calls `each` with pieces of the ids that fit into one statement.
template <typename Each>
void inPieces(std::span<const std::int64_t> ids, const Each& each) {
  for (std::size_t at = 0; at < ids.size(); at += kIdsAtOnce) {
    each(ids.subspan(at, std::min(kIdsAtOnce, ids.size() - at)));
  }
}

std::vector<std::int64_t> sorted(std::vector<std::int64_t> ids) {
  std::sort(ids.begin(), ids.end());
  return ids;
}

/// Does `work` in a transaction, again when another station got in its way, and returns what it returns or the error.
template <typename Work>
auto inTransaction(CatalogueConnection& connection, Purpose purpose, const Work& work)
    -> Expected<std::invoke_result_t<Work>> {
  for (int attempt = 1;; ++attempt) {
    try {
      CatalogueTransaction transaction(connection, purpose);
      auto result = work();
      transaction.commit();
      return result;
    } catch (const CatalogueFailure& failure) {
      const bool isFile = connection.dialect() == SqlDialect::sqlite;
      if (failure.trouble == SqlTrouble::damaged && isFile) return damageOf(connection.where());
      if (failure.trouble != SqlTrouble::conflict || attempt == kTries) return failure.error;
    }
  }
}

}  // namespace

SqlCatalogue::SqlCatalogue(std::unique_ptr<CatalogueConnection> connection) : connection_(std::move(connection)) {}

Expected<std::vector<TapeSummary>> SqlCatalogue::tapes() {
  return inTransaction(*connection_, Purpose::read, [&] {
    std::vector<TapeSummary> tapes;
    CatalogueStatement rows(*connection_, QLatin1String(kTapeSummaries));
    rows.run();
    while (rows.next()) {
      tapes.push_back({rows.integer(0), rows.text(1), rows.integer(2), rows.integer(3), rows.integer(4),
                       rows.integer(5), rows.integer(6)});
    }
    return tapes;
  });
}

Expected<CatalogueTape> SqlCatalogue::tape(const std::string& name) {
  return inTransaction(*connection_, Purpose::read, [&] {
    CatalogueTape tape;
    tape.name = name;
    CatalogueStatement tapes(*connection_, QStringLiteral("SELECT id FROM tapes WHERE name = ?"));
    if (!tapes.run(storable(name, "The tape's name")).next()) {
      throw CatalogueFailure{{"There is no tape \"" + name + "\" in the catalogue " + connection_->where(),
                              "Names are as they were given, upper and lower case matter."}};
    }
    tape.id = tapes.integer(0);

    CatalogueStatement sequences(*connection_,
                                 QStringLiteral("SELECT id, name FROM sequences WHERE tape_id = ? ORDER BY id"));
    std::unordered_map<std::int64_t, std::size_t> indexOf;
    sequences.run(number(tape.id));
    while (sequences.next()) {
      indexOf.emplace(sequences.integer(0), tape.sequences.size());
      tape.sequences.push_back({sequences.integer(0), sequences.text(1), {}});
    }

    CatalogueStatement clips(*connection_,
                             QStringLiteral("SELECT ") + clipColumns() +
                                 QStringLiteral(", clips.sequence_id FROM sequences JOIN clips ON "
                                                "clips.sequence_id = sequences.id WHERE sequences.tape_id "
                                                "= ? ORDER BY clips.sequence_id, clips.position"));
    clips.run(number(tape.id));
    while (clips.next()) {
      const auto index = indexOf.find(clips.integer(kClipColumnCount));
      // Both were asked for in one transaction, so only a damaged file gives two answers.
      if (index == indexOf.end()) {
        throw CatalogueFailure{{"The catalogue " + connection_->where() + " is damaged", ""}, SqlTrouble::damaged};
      }
      tape.sequences.at(index->second).clips.push_back(readClip(clips, connection_->where()));
    }
    return tape;
  });
}

Expected<std::vector<CatalogueClip>> SqlCatalogue::clips(const std::vector<std::int64_t>& ids) {
  return inTransaction(*connection_, Purpose::read, [&] { return readClips(ids); });
}

std::vector<CatalogueClip> SqlCatalogue::readClips(const std::vector<std::int64_t>& ids) {
  std::unordered_map<std::int64_t, CatalogueClip> found;
  inPieces(ids, [&](std::span<const std::int64_t> piece) {
    CatalogueStatement rows(*connection_, QStringLiteral("SELECT ") + clipColumns() +
                                              QStringLiteral(" FROM clips WHERE id IN (%1)").arg(list(piece)));
    rows.run();
    while (rows.next()) found.insert_or_assign(rows.integer(0), readClip(rows, connection_->where()));
  });
  std::vector<CatalogueClip> clips;
  clips.reserve(ids.size());
  for (const std::int64_t id : ids) {
    const auto clip = found.find(id);
    if (clip == found.end()) failUnknownClip(id);
    clips.push_back(clip->second);
  }
  return clips;
}

Expected<std::vector<std::uint8_t>> SqlCatalogue::poster(std::int64_t clip) {
  return inTransaction(*connection_, Purpose::read, [&] {
    CatalogueStatement rows(*connection_, QStringLiteral("SELECT posters.picture FROM clips LEFT JOIN posters ON "
                                                         "posters.clip_id = clips.id WHERE clips.id = ?"));
    if (!rows.run(number(clip)).next()) failUnknownClip(clip);
    return bytesOf(rows.value(0));
  });
}

Expected<CatalogueSequence> SqlCatalogue::addSequence(const std::string& tapeName, const CatalogueSequence& sequence) {
  return inTransaction(*connection_, Purpose::write, [&] {
    if (tapeName.empty()) throw CatalogueFailure{{"A tape in the catalogue needs a name", "Give the tape one."}};
    const std::int64_t tape = tapeFor(storable(tapeName, "The tape's name"));
    CatalogueSequence stored = sequence;
    CatalogueStatement insert(*connection_,
                              QStringLiteral("INSERT INTO sequences (tape_id, name) VALUES (?, ?) RETURNING id"));
    insert.run(number(tape), storable(sequence.name, "The sequence's name")).next();
    stored.id = insert.integer(0);
    ClipWriter writer(*connection_);
    std::int64_t position = 0;
    for (CatalogueClip& clip : stored.clips) {
      clip.id = writer.write(clip, stored.id, position++);
      clip.poster.clear();
    }
    return stored;
  });
}

// Two stations may add the first sequence of a tape at the same time: the one that comes second waits for the first.
std::int64_t SqlCatalogue::tapeFor(const QString& name) {
  CatalogueStatement(*connection_, QStringLiteral("INSERT INTO tapes (name) VALUES (?) ON CONFLICT (name) DO NOTHING"))
      .run(name);
  CatalogueStatement tape(*connection_, QStringLiteral("SELECT id FROM tapes WHERE name = ?"));
  tape.run(name).next();
  return tape.integer(0);
}

Expected<std::int64_t> SqlCatalogue::setMarked(const std::vector<std::int64_t>& ids, bool marked) {
  return inTransaction(*connection_, Purpose::write, [&] { return setFlag(QStringLiteral("marked"), ids, marked); });
}

Expected<std::int64_t> SqlCatalogue::setTrashed(const std::vector<std::int64_t>& ids, bool trashed) {
  return inTransaction(*connection_, Purpose::write, [&] { return setFlag(QStringLiteral("trashed"), ids, trashed); });
}

std::int64_t SqlCatalogue::setFlag(const QString& column, const std::vector<std::int64_t>& ids, bool value) {
  lockClips(ids);
  std::int64_t changed = 0;
  inPieces(ids, [&](std::span<const std::int64_t> piece) {
    CatalogueStatement update(*connection_, QStringLiteral("UPDATE clips SET %1 = %2 WHERE id IN (%3) AND %1 <> %2")
                                                .arg(column, QString::number(value ? 1 : 0), list(piece)));
    changed += update.run().rowsChanged();
  });
  return changed;
}

// On a server, row by row, and in one order, so that two stations never wait for each other.
void SqlCatalogue::lockClips(const std::vector<std::int64_t>& ids) {
  const QString select = connection_->dialect() == SqlDialect::sqlite
                             ? QStringLiteral("SELECT id FROM clips WHERE id IN (%1)")
                             : QStringLiteral("SELECT id FROM clips WHERE id IN (%1) ORDER BY id FOR UPDATE");
  std::unordered_set<std::int64_t> found;
  inPieces(sorted(ids), [&](std::span<const std::int64_t> piece) {
    CatalogueStatement rows(*connection_, select.arg(list(piece)));
    rows.run();
    while (rows.next()) found.insert(rows.integer(0));
  });
  for (const std::int64_t id : ids) {
    if (!found.contains(id)) failUnknownClip(id);
  }
}

Status SqlCatalogue::setRecaptured(std::int64_t clip, const std::string& path) {
  const Expected<bool> done = inTransaction(*connection_, Purpose::write, [&] {
    if (path.empty()) {
      throw CatalogueFailure{{"A recaptured movie needs a path", "Clip " + std::to_string(clip) + " stays as it is."}};
    }
    CatalogueStatement update(
        *connection_, QStringLiteral("UPDATE clips SET recaptured = 1, recaptured_path = ?, marked = 0 WHERE id = ?"));
    update.run(storable(path, "The recaptured movie's path"), number(clip));
    if (update.rowsChanged() == 0) failUnknownClip(clip);
    return true;
  });
  return done.ok() ? Status() : Status(done.error());
}

void SqlCatalogue::failUnknownClip(std::int64_t id) const {
  throw CatalogueFailure{{"There is no clip " + std::to_string(id) + " in the catalogue " + connection_->where(),
                          "Nothing was changed. Check the number."}};
}

}  // namespace zq::host
