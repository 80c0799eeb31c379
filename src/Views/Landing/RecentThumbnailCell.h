#pragma once

#include <QAbstractButton>
#include <QImage>
#include <QUrl>

class RecentThumbnailLoader;

/// A recent file: the picture of its first page, and below it the file's name without extension. A click opens it.
/// A file without a picture shows an empty page.
class RecentThumbnailCell : public QAbstractButton {
    Q_OBJECT

public:
    /// Asks `loader` for the picture when the cache has none.
    RecentThumbnailCell(const QUrl& url, RecentThumbnailLoader& loader, QWidget* parent = nullptr);
    ~RecentThumbnailCell() override;

    [[nodiscard]] const QUrl& url() const { return m_url; }
    /// Null until it is there.
    [[nodiscard]] const QImage& thumbnail() const { return m_thumbnail; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void load(RecentThumbnailLoader& loader);
    void drawPage(QPainter& painter, const QRect& area) const;

    QUrl m_url;
    QImage m_thumbnail;
};
