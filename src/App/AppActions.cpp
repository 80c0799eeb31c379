#include "AppActions.h"

static QAction* makeAction(QObject* owner, const QString& name, const QString& text, const QKeySequence& keys = {}) {
    auto* action = new QAction(text, owner);
    action->setObjectName(name);
    action->setShortcut(keys);
    action->setMenuRole(QAction::NoRole);
    return action;
}

AppActions::AppActions(QObject* parent)
    : QObject(parent),
      newTab(makeAction(this, QStringLiteral("newTab"), QStringLiteral("&New Tab"), Qt::CTRL | Qt::Key_T)),
      open(makeAction(this, QStringLiteral("open"), QStringLiteral("&Open…"), Qt::CTRL | Qt::Key_O)),
      quit(makeAction(this, QStringLiteral("quit"), QStringLiteral("&Quit"), Qt::CTRL | Qt::Key_Q)),
      settings(makeAction(this, QStringLiteral("settings"), QStringLiteral("Se&ttings…"), Qt::CTRL | Qt::Key_Comma)),
      about(makeAction(this, QStringLiteral("about"), QStringLiteral("&About Quillo"))),
      makeDefault(
          makeAction(this, QStringLiteral("makeDefault"), QStringLiteral("&Make Quillo the Default PDF Viewer…"))) {}

AppActions::~AppActions() = default;
