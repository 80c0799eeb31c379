#pragma once

#include "Document.h"
#include "GatedSnapshot.h"
#include "UndoManager.h"

#include <QFile>

/// A document that holds a text. One that begins with "damaged" can't be read.
class TextDocument : public Document {
    Q_OBJECT

public:
    QString text;
    /// The sentence with which the next save fails; empty if it goes well.
    QString failure;
    /// When there is one, a snapshot isn't written before the gate is released once.
    std::shared_ptr<QSemaphore> gate;
    /// When there is one, no file is read before it is released once.
    std::shared_ptr<QSemaphore> readingGate;
    /// Released once for each snapshot that comes to the gate.
    const std::shared_ptr<QSemaphore> atGate = std::make_shared<QSemaphore>();

    void append(const QString& addition) {
        text += addition;
        undoManager()->registerUndo(this, [this, addition] {
            text.chop(addition.size());
            undoManager()->registerUndo(this, [this, addition] { append(addition); });
        });
    }

    Reading reading(const QUrl& url) const override {
        return [url, gate = readingGate]() -> Filling {
            if (gate)
                gate->acquire();
            QFile file(url.toLocalFile());
            const QString content = file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
            if (content.startsWith(QLatin1String("damaged")))
                throw DocumentError(QStringLiteral("The file is damaged."));
            return [content](Document& document) {
                auto& filled = static_cast<TextDocument&>(document);
                filled.text.clear();
                filled.append(content);
            };
        };
    }

    QByteArray dataRepresentation() const override {
        if (!failure.isEmpty())
            throw DocumentError(failure);
        return text.toUtf8();
    }

    std::shared_ptr<const DocumentSnapshot> snapshot(SignatureCare care) const override {
        if (!gate)
            return Document::snapshot(care);
        return std::make_shared<GatedSnapshot>(Document::snapshot(care), gate, atGate);
    }

    QString fileNameExtension() const override { return QStringLiteral("txt"); }
};
