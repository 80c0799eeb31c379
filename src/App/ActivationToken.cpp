#include "ActivationToken.h"

#include <QGuiApplication>

static constexpr auto variable = "XDG_ACTIVATION_TOKEN";

// Other threads read the environment without a lock. The C library moves the list of variables when one is added and
// the list is too short for it, which frees what they read; it only exchanges a pointer in a list that has room. So the
// list gets room for this one variable while there is one thread.
void ActivationToken::makeRoom() {
    if (qEnvironmentVariableIsSet(variable))
        return;
    qputenv(variable, {});
    qunsetenv(variable);
}

void ActivationToken::use(const QString& token) {
    if (!token.isEmpty() && QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        qputenv(variable, token.toUtf8());
}
