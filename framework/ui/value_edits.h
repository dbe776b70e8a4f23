#pragma once

#include <QDate>
#include <QLineEdit>
#include <QRegularExpressionValidator>

namespace framework {

/// A line edit that tells when the focus moved on to another control of its window (and not to
/// another window or a menu).
class ExitEdit : public QLineEdit {
    Q_OBJECT
  public:
    using QLineEdit::QLineEdit;

  Q_SIGNALS:
    void exited();

  protected:
    void focusOutEvent(QFocusEvent* event) override;
    virtual void commit() {}  ///< tidies the typed text before exited() is told
};

/// A plain text of a definition.
class TextEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit TextEdit(QWidget* parent = nullptr) : ExitEdit(parent) {}
    /// A dragged text takes the place of the whole text, and is not put in where it is dropped.
    void setDropReplaces(bool on) { m_dropReplaces = on; }

  protected:
    void dropEvent(QDropEvent* event) override;

  private:
    bool m_dropReplaces = false;
};

/// A whole number of at most so many digits; an empty text is 0. A number dragged from a search
/// window replaces the text.
class NumberEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit NumberEdit(int maxDigits, QWidget* parent = nullptr);
    qint64 value() const { return text().trimmed().toLongLong(); }
    void setValue(qint64 value) { setText(QString::number(value)); }

  protected:
    void commit() override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    bool isNumber(const QString& text) const;
    int m_maxDigits;
};

/// A decimal number. It keeps the exact double behind the text: what was set reads back to the last
/// bit. So many decimals can be typed; a set value with more of them shows up to 14. Decimal comma
/// and point are both taken on typing, the user's locale is shown. Alt and a digit, released with
/// no other modifier, is a shortcut.
class DecimalEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit DecimalEdit(int decimals, QWidget* parent = nullptr);
    /// An emptied text means 0 from now on; otherwise it is no number.
    void setEmptyIsZero() { m_emptyIsZero = true; }
    /// The value shown, or, while the text is no number, the last one that was.
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
};

/// A date or nothing. Typed in the user's order or as yyyy-mm-dd, or picked from a calendar.
class DateEdit : public ExitEdit {
    Q_OBJECT
  public:
    explicit DateEdit(QWidget* parent = nullptr);
    /// Invalid when the edit is empty or its text is no date.
    QDate date() const { return parse(text()); }
    void setDate(const QDate& date);
    /// False when there is a text that is no date.
    bool isReadable() const { return text().trimmed().isEmpty() || date().isValid(); }

  protected:
    void commit() override;

  private:
    static QDate parse(const QString& text);
    void pickFromCalendar();
};

}  // namespace framework
