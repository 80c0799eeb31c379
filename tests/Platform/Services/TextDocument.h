#pragma once

#include "Document.h"
#include "UndoManager.h"

#include <QFile>

/// A document that holds a text. One that begins with "damaged" can't be read.
class TextDocument : public Document {
    Q_OBJECT

public:
    QString text;
    /// The sentence with which the next save fails; empty if it goes well.
    QString failure;

    void append(const QString& addition) {
        text += addition;
        undoManager()->registerUndo(this, [this, addition] { text.chop(addition.size()); });
    }

    void read(const QUrl& url) override {
        QFile file(url.toLocalFile());
        if (!file.open(QIODevice::ReadOnly))
            throw DocumentError(file.errorString());
        append(QString::fromUtf8(file.readAll()));
        if (text.startsWith(QLatin1String("damaged")))
            throw DocumentError(QStringLiteral("The file is damaged."));
    }

    QByteArray dataRepresentation() const override {
        if (!failure.isEmpty())
            throw DocumentError(failure);
        return text.toUtf8();
    }

    QString fileNameExtension() const override { return QStringLiteral("txt"); }
};
