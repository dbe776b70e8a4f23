#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QWidget>
#include <memory>

namespace framework {

/// The splash window: picture "ZAVLOGO.JPG" of the program's folder (when there is one), title,
/// version and a progress bar.
class TZAVLogoForm : public QWidget {
    Q_OBJECT
  public:
    TZAVLogoForm();
    void AsetaTiedot(const QString& title, const QString& version);
    QProgressBar* progressBar() const { return m_progress; }
    /// Shows and paints at once, before the event loop runs.
    void showNow();

  private:
    QLabel* m_title;
    QLabel* m_version;
    QProgressBar* m_progress;
};

/// A short-lived notice in the middle of the screen; it goes with the returned object.
std::shared_ptr<void> showNotice(const QString& text);

}  // namespace framework
