#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

/// A symbol on its own, in the palette's text colour unless it has one of its own. It is drawn when it is painted, so
/// it follows the palette and is sharp on every screen that the window moves to.
class SymbolPicture : public QWidget {
    Q_OBJECT

public:
    /// `side` in device-independent pixels.
    SymbolPicture(const QString& symbolName, int side, QWidget* parent = nullptr);
    ~SymbolPicture() override;

    [[nodiscard]] const QString& symbolName() const { return m_symbolName; }
    /// An empty name shows nothing.
    void setSymbolName(const QString& symbolName);
    /// An invalid colour stands for that of the text.
    void setColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_symbolName;
    QColor m_color;
};
