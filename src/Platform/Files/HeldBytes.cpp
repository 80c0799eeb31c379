#include "HeldBytes.h"

#include "Descriptor.h"
#include "StateFolder.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Not the folder for temporary files, which often is memory itself.
int openNamelessFile() {
    const QString folder = StateFolder::path();
    QDir().mkpath(folder);
    const int file = open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file >= 0)
        return file;
    // Not every file system knows files without a name.
    QByteArray name = QFile::encodeName(folder) + "/quillo-XXXXXX";
    const int named = mkostemp(name.data(), O_CLOEXEC);
    if (named >= 0)
        unlink(name.constData());
    return named;
}

bool writeAll(int file, QByteArrayView bytes) {
    while (!bytes.isEmpty()) {
        const ssize_t written = write(file, bytes.data(), std::size_t(bytes.size()));
        if (written <= 0)
            return false;
        bytes = bytes.sliced(written);
    }
    return true;
}

/// Null when the disk doesn't take them.
QByteArrayView mapped(const QByteArray& bytes) {
    const Descriptor file(openNamelessFile());
    if (!file.isOpen() || !writeAll(file.number(), bytes))
        return {};
    // Nobody else can shorten the file, so that reading the map is safe; it needs no descriptor.
    void* start = mmap(nullptr, std::size_t(bytes.size()), PROT_READ, MAP_SHARED, file.number(), 0);
    return start == MAP_FAILED ? QByteArrayView() : QByteArrayView(static_cast<const char*>(start), bytes.size());
}

} // namespace

HeldBytes::HeldBytes(QByteArray bytes, Place place) : m_bytes(std::move(bytes)) {
    if (place == Place::memory || m_bytes.size() < fewestOnDisk)
        return;
    m_mapped = mapped(m_bytes);
    if (!isInMemory())
        m_bytes = {};
}

void HeldBytes::rest() const {
    if (!isInMemory())
        madvise(const_cast<char*>(m_mapped.data()), std::size_t(m_mapped.size()), MADV_DONTNEED);
}

HeldBytes::~HeldBytes() {
    if (!isInMemory())
        munmap(const_cast<char*>(m_mapped.data()), std::size_t(m_mapped.size()));
}
