#include "AppActions.h"

#include "Shortcuts.h"

static QAction* makeAction(QObject* owner, const QString& name, const QString& text) {
    auto* action = new QAction(text, owner);
    action->setObjectName(name);
    action->setShortcuts(Shortcuts::of(name));
    action->setMenuRole(QAction::NoRole);
    return action;
}

AppActions::AppActions(QObject* parent)
    : QObject(parent), newTab(makeAction(this, QStringLiteral("newTab"), QStringLiteral("&New Tab"))),
      open(makeAction(this, QStringLiteral("open"), QStringLiteral("&Open…"))),
      quit(makeAction(this, QStringLiteral("quit"), QStringLiteral("&Quit"))),
      settings(makeAction(this, QStringLiteral("settings"), QStringLiteral("Se&ttings…"))),
      about(makeAction(this, QStringLiteral("about"), QStringLiteral("&About Quillo"))),
      makeDefault(
          makeAction(this, QStringLiteral("makeDefault"), QStringLiteral("&Make Quillo the Default PDF Viewer…"))) {}

AppActions::~AppActions() = default;
