#include "StateFolder.h"

#include <QDir>

QString StateFolder::path() {
    const QString state = qEnvironmentVariable("XDG_STATE_HOME");
    // A relative path is to be passed over.
    return QDir::isAbsolutePath(state) ? state : QDir::homePath() + QStringLiteral("/.local/state");
}
