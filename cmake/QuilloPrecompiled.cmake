# Headers of Qt, the standard library and the test framework that most files include, compiled once for all folders: they
# were most of the time of a build. A file still includes what it uses; clang-tidy reads the files without this.
#
# One set a level of Qt; a folder takes the highest that it links. What a set is compiled with must be a part of what its
# users are, or the compiler leaves it aside, with a warning.
set(QUILLO_PRECOMPILED_std
    <algorithm> <array> <atomic> <chrono> <cmath> <cstdint> <functional> <map> <memory> <mutex> <optional> <set> <span>
    <stdexcept> <string> <string_view> <unordered_map> <utility> <variant> <vector>)
set(QUILLO_PRECOMPILED_core
    ${QUILLO_PRECOMPILED_std}
    <QByteArray> <QCoreApplication> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QJsonArray> <QJsonDocument>
    <QJsonObject> <QList> <QObject> <QPointF> <QPointer> <QRectF> <QRegularExpression> <QSet> <QString> <QStringList>
    <QStringView> <QTimer> <QUrl> <QVariantMap>)
set(QUILLO_PRECOMPILED_gui
    ${QUILLO_PRECOMPILED_core}
    <QColor> <QEvent> <QFont> <QFontMetricsF> <QGuiApplication> <QIcon> <QImage> <QKeyEvent> <QMouseEvent> <QPainter>
    <QPainterPath> <QPalette> <QPixmap> <QTransform>)
set(QUILLO_PRECOMPILED_widgets
    ${QUILLO_PRECOMPILED_gui}
    <QAction> <QApplication> <QDialog> <QFrame> <QHBoxLayout> <QLabel> <QLineEdit> <QMenu> <QMessageBox> <QPushButton>
    <QScrollArea> <QScrollBar> <QStyle> <QTextCursor> <QTextDocument> <QTextEdit> <QVBoxLayout> <QVariantAnimation>
    <QWidget>)
set(QUILLO_PRECOMPILED_tests ${QUILLO_PRECOMPILED_widgets} <gtest/gtest.h>)

# quillo_precompile(<level> <libraries>…)
function(quillo_precompile level)
    set(target quillo_precompiled_${level})
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/${target}.cpp CONTENT "")
    add_library(${target} OBJECT ${PROJECT_BINARY_DIR}/${target}.cpp)
    set_target_properties(${target} PROPERTIES AUTOMOC OFF UNITY_BUILD OFF)
    target_link_libraries(${target} PRIVATE quillo_flags ${ARGN})
    target_precompile_headers(${target} PRIVATE ${QUILLO_PRECOMPILED_${level}})
endfunction()

# quillo_use_precompiled(<target> <libraries that it links>…)
function(quillo_use_precompiled target)
    if(Qt6::Widgets IN_LIST ARGN)
        set(level widgets)
    elseif(Qt6::Gui IN_LIST ARGN)
        set(level gui)
    else()
        set(level core)
    endif()
    target_precompile_headers(${target} REUSE_FROM quillo_precompiled_${level})
endfunction()
