#include "framework/ui/window_place.h"

#include <QEvent>
#include <QSettings>

#include "framework/ui/dialogs.h"
#include "platform/command_line.h"
#include "platform/user_settings.h"

namespace framework {

namespace {

bool remembersPlaces() {
    return Dialogs::isInteractive() && !platform::hasSwitch(QStringLiteral("/E"));
}

class PlaceKeeper : public QObject {
  public:
    PlaceKeeper(QWidget& window, QString key)
        : QObject(&window), m_window(window), m_key(std::move(key)) {}

    bool eventFilter(QObject*, QEvent* event) override {
        // Minimising also hides the window, but spontaneously.
        if (event->type() == QEvent::Hide && !event->spontaneous() && remembersPlaces())
            platform::userSettings()->setValue(m_key, m_window.saveGeometry());
        return false;
    }

  private:
    QWidget& m_window;
    QString m_key;
};

}  // namespace

bool rememberPlace(QWidget& window, const QString& name) {
    const QString key = QStringLiteral("Paikat/") + name;
    window.installEventFilter(new PlaceKeeper(window, key));
    return remembersPlaces() &&
           window.restoreGeometry(platform::userSettings()->value(key).toByteArray());
}

}  // namespace framework
