#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <vector>

class PDFDocument;
class PDFDocumentSnapshot;

/// New files that are made of documents as they are at one moment, to be written by any thread. One thread at a time.
class FrozenCopies {
public:
    /// With a password, the copy opens with that alone, which is the owner's too. Main thread; throws `PDFError`.
    void add(const PDFDocument& document, const QString& path, const QString& password = {});

    /// Composes all of them, and then writes one after the other, each at once or not at all. `mayWrite` is asked when
    /// they are complete, before the first is written: its "no" leaves nothing behind. Throws `PDFError` and
    /// `FileError`; files that were written before stay. False when `mayWrite` said no.
    ///
    /// A protected copy that its password doesn't open is an error: it replaces nothing.
    bool write(const std::function<bool()>& mayWrite) const;

private:
    struct Copy {
        std::shared_ptr<const PDFDocumentSnapshot> snapshot;
        QString path;
        QString password;
        int pageCount;
    };
    std::vector<Copy> m_copies;
};
