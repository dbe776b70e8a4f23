#pragma once

#include <QDate>
#include <QLineEdit>
#include <QRegularExpressionValidator>
#include <functional>

class QMimeData;

namespace framework {

/// A line edit with a signal for the focus moving to another control of its window (not to another
/// window or a menu).
class ExitEdit : public QLineEdit {
    Q_OBJECT
  public:
    using QLineEdit::QLineEdit;

  Q_SIGNALS:
    void exited();

  protected:
    void focusOutEvent(QFocusEvent* event) override;
    virtual void commit() {}  ///< normalises the text before exited()
};

/// A plain text.
class TextEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit TextEdit(QWidget* parent = nullptr) : ExitEdit(parent) {}
    /// A dropped text replaces the whole text instead of being inserted.
    void setDropReplaces(bool on) { m_dropReplaces = on; }

  protected:
    void dropEvent(QDropEvent* event) override;

  private:
    bool m_dropReplaces = false;
};

/// A whole number with at most maxDigits digits; an empty text is 0. A number dropped from a search
/// window replaces the text.
class NumberEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit NumberEdit(int maxDigits, QWidget* parent = nullptr);
    /// From now on an empty text stays empty. Starts empty.
    void setMayBeEmpty();
    bool isEmpty() const { return text().trimmed().isEmpty(); }
    qint64 value() const { return text().trimmed().toLongLong(); }
    void setValue(qint64 value) { setText(QString::number(value)); }
    /// Asked about dragged data with a text; returns why it is refused, or empty.
    using DropCheck = std::function<QString(const QMimeData& dragged)>;
    void setDropCheck(DropCheck check) { m_dropCheck = std::move(check); }

  Q_SIGNALS:
    void dropRefused(const QString& reason);  ///< also shown beside the edit

  protected:
    void commit() override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    bool isNumber(const QString& text) const;
    QString refusal(const QMimeData& dragged) const;
    int m_maxDigits;
    bool m_mayBeEmpty = false;
    DropCheck m_dropCheck;
};

/// A decimal number that keeps the exact double behind the text: a set value reads back to the last
/// bit, and is shown with all its decimals. Typing is limited to `decimals`. Accepts decimal comma
/// and point, shows the user's locale. Alt and a digit, released without another modifier, is a
/// shortcut.
class DecimalEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit DecimalEdit(int decimals, QWidget* parent = nullptr);
    /// From now on an empty text is 0; otherwise it is unreadable.
    void setEmptyIsZero() { m_emptyIsZero = true; }
    /// From now on an empty text is readable and stays empty. Starts empty.
    void setMayBeEmpty();
    bool isEmpty() const { return text().trimmed().isEmpty(); }
    /// Shows no value.
    void setNothing();
    /// The value shown or, if the text is no number, the last readable one.
    double value() const { return m_value; }
    void setValue(double value);
    bool isReadable() const { return m_readable; }

  Q_SIGNALS:
    void altDigitReleased(int digit);

  protected:
    void commit() override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

  private:
    void showValue(double value);
    void limitDecimals(int decimals);
    void readTyped(const QString& text);

    int m_decimals;
    double m_value = 0.0;
    QRegularExpressionValidator* m_typed;
    bool m_readable = true;
    bool m_emptyIsZero = false;
    bool m_mayBeEmpty = false;
};

/// A date or empty. Typed in the locale's order or as yyyy-mm-dd, or picked from a calendar.
class DateEdit : public ExitEdit {
    Q_OBJECT
  public:
    /// `noDate`: what the calendar's menu calls an empty date.
    explicit DateEdit(QWidget* parent = nullptr,
                      const QString& noDate = QStringLiteral("Ei rajausta"));
    /// Invalid if empty or unreadable.
    QDate date() const { return parse(text()); }
    void setDate(const QDate& date);
    /// False if there is a text that is no date.
    bool isReadable() const { return text().trimmed().isEmpty() || date().isValid(); }

  protected:
    void commit() override;

  private:
    static QDate parse(const QString& text);
    void pickFromCalendar();
    QString m_noDate;
};

}  // namespace framework
