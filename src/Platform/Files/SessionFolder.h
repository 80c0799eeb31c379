#pragma once

#include "Descriptor.h"

#include <QString>

#include <memory>
#include <mutex>

/// A folder below the temporary one for the files of one run of the program, which goes with all in it when this does.
/// What a run that crashed has left goes at a later start. Any thread.
class SessionFolder {
public:
    /// The folder's name begins with `prefix`, which tells what kind of files it holds. It is made when it is asked
    /// for.
    explicit SessionFolder(QString prefix);
    ~SessionFolder();
    Q_DISABLE_COPY_MOVE(SessionFolder)

    /// Takes the folder away. What is asked for afterwards gets another.
    void remove();

    /// The path of a new, empty folder in it; empty when it can't be made. For this user alone.
    [[nodiscard]] QString makeFolder();

    /// Takes away the folders of this user with that prefix whose programs have ended.
    static void removeAbandoned(const QString& prefix);

private:
    QString path();

    const QString m_prefix;
    std::mutex m_mutex;
    // Guarded by the mutex.
    QString m_path;
    std::unique_ptr<Descriptor> m_lock; ///< held as long as the folder is in use
};
