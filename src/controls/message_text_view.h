#pragma once
// A large message in the middle of a window.

#include <QString>
#include <QWidget>

namespace zq {

/// Main thread only.
class ZQAccurateMessageTextView : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QString message READ message WRITE setMessage)

 public:
  explicit ZQAccurateMessageTextView(QWidget* parent = nullptr);

  const QString& message() const { return message_; }
  void setMessage(const QString& message);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString message_;
};

}  // namespace zq
