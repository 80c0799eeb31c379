#include "Shortcuts.h"

#include "AnnotationTool.h"
#include "MarkupAction.h"

#include <QHash>

namespace {

using Table = QHash<QString, QList<QKeySequence>>;

Table makeTable() {
    Table table{
        // The program
        {QStringLiteral("newTab"), {Qt::CTRL | Qt::Key_T}},
        {QStringLiteral("open"), {Qt::CTRL | Qt::Key_O}},
        {QStringLiteral("quit"), {Qt::CTRL | Qt::Key_Q}},
        {QStringLiteral("settings"), {Qt::CTRL | Qt::Key_Comma}},
        // A window and its document
        {QStringLiteral("close"), {Qt::CTRL | Qt::Key_W}},
        {QStringLiteral("save"), {Qt::CTRL | Qt::Key_S}},
        {QStringLiteral("saveAs"), {Qt::CTRL | Qt::SHIFT | Qt::Key_S}},
        {QStringLiteral("print"), {Qt::CTRL | Qt::Key_P}},
        {QStringLiteral("undo"), {Qt::CTRL | Qt::Key_Z}},
        {QStringLiteral("redo"), {Qt::CTRL | Qt::SHIFT | Qt::Key_Z}},
        {QStringLiteral("fullScreen"), {Qt::Key_F11}},
        {QStringLiteral("nextTab"), {Qt::CTRL | Qt::Key_Tab, Qt::CTRL | Qt::Key_PageDown}},
        {QStringLiteral("previousTab"), {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::Key_PageUp}},
        // Reading
        {QStringLiteral("copy"), {Qt::CTRL | Qt::Key_C}},
        {QStringLiteral("selectAll"), {Qt::CTRL | Qt::Key_A}},
        // Without Shift the key of the plus sign is "=" on many keyboards.
        {QStringLiteral("zoomIn"), {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal}},
        {QStringLiteral("zoomOut"), {Qt::CTRL | Qt::Key_Minus}},
        {QStringLiteral("zoomToFit"), {Qt::CTRL | Qt::Key_0}},
        {QStringLiteral("previousPage"), {Qt::CTRL | Qt::Key_Up}},
        {QStringLiteral("nextPage"), {Qt::CTRL | Qt::Key_Down}},
        {QStringLiteral("firstPage"), {Qt::CTRL | Qt::Key_Home}},
        {QStringLiteral("lastPage"), {Qt::CTRL | Qt::Key_End}},
        {QStringLiteral("back"), {Qt::ALT | Qt::Key_Left}},
        {QStringLiteral("forward"), {Qt::ALT | Qt::Key_Right}},
        {QStringLiteral("nextPane"), {Qt::Key_F6}},
        {QStringLiteral("previousPane"), {Qt::SHIFT | Qt::Key_F6}},
        {QStringLiteral("toggleSidebar"), {Qt::CTRL | Qt::ALT | Qt::Key_S}},
        {QStringLiteral("askAssistant"), {Qt::CTRL | Qt::Key_K}},
    };
    // The letters of tools and marks stand with them.
    for (const AnnotationToolInfo& info : allAnnotationTools())
        table.insert(info.rawValue, {QKeySequence(QStringLiteral("Ctrl+") + info.shortcutKey.toUpper())});
    for (const MarkupActionInfo& info : allMarkupActions())
        table.insert(info.rawValue, {QKeySequence(QStringLiteral("Ctrl+Shift+") + info.shortcutKey.toUpper())});
    return table;
}

const Table& table() {
    static const Table keys = makeTable();
    return keys;
}

} // namespace

QList<QKeySequence> Shortcuts::of(const QString& command) {
    return table().value(command);
}

QString Shortcuts::text(const QString& command) {
    return table().value(command).value(0).toString(QKeySequence::NativeText);
}

QStringList Shortcuts::commands() {
    return table().keys();
}
