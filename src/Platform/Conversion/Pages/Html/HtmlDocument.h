#pragma once

#include <QString>
#include <QTextDocument>
#include <QUrl>
#include <QVariant>

/// An HTML document which reads nothing but what lies in its folder.
class HtmlDocument : public QTextDocument {
public:
    /// `folder`: where the HTML file lies.
    explicit HtmlDocument(const QString& folder);

protected:
    /// A picture as a QImage, anything else as a QByteArray; invalid where it may not be read or isn't there.
    QVariant loadResource(int type, const QUrl& name) override;

private:
    [[nodiscard]] QByteArray bytesAt(const QUrl& address) const;

    QString m_folder; ///< without links in its path, ending with a slash
};
