#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QWidget>
#include <memory>

namespace framework {

/// The splash window: picture "ZAVLOGO.JPG" from the program's folder (if any), title, version and
/// a progress bar.
class TZAVLogoForm : public QWidget {
    Q_OBJECT
  public:
    TZAVLogoForm();
    void AsetaTiedot(const QString& title, const QString& version);
    QProgressBar* progressBar() const { return m_progress; }
    /// Shows and paints at once; needs no event loop.
    void showNow();

  private:
    QLabel* m_title;
    QLabel* m_version;
    QProgressBar* m_progress;
};

/// Shows a notice in the middle of the screen for the life of the returned object.
std::shared_ptr<void> showNotice(const QString& text);

}  // namespace framework
