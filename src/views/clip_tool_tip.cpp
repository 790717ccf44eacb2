#include "views/clip_tool_tip.h"

#include <QLocale>
#include <QStringList>
#include <QTextDocument>
#include <QTime>

#include "timecode/timecode_text.h"
#include "views/medium_date.h"

namespace zq {

QString clipToolTip(const ZQACClip& clip) {
  QStringList lines{QString::fromStdString(clip.clipName())};
  if (const DateValue& date = clip.dateStartClip()) {
    const QTime time(date->hourOfDay(), date->minuteOfHour(), date->secondOfMinute());
    lines << mediumDateText(*date, QLocale()) + ' ' + time.toString(QStringLiteral("HH:mm:ss"));
  }
  if (clip.clipDuration()) lines << QString::fromStdString(timecodeText(*clip.clipDuration()));
  lines.removeAll(QString());
  return lines.isEmpty() ? QString() : Qt::convertFromPlainText(lines.join('\n'), Qt::WhiteSpaceNormal);
}

}  // namespace zq
