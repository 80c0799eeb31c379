#pragma once

#include <QImage>
#include <QObject>
#include <QTextImageFormat>
#include <QTextObjectInterface>

/// Places the pictures of an HTML document: as large as it says, and scaled down where that is more than a page.
class HtmlPictureObject : public QObject, public QTextObjectInterface {
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    using QObject::QObject;

    QSizeF intrinsicSize(QTextDocument* document, int position, const QTextFormat& format) override;
    void drawObject(QPainter* painter, const QRectF& area, QTextDocument* document, int position,
                    const QTextFormat& format) override;
};
