#pragma once

#include "PrintCopy.h"
#include "PrintJob.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <list>

/// What a print dialog was told to print, and where to.
struct PrintOrder {
    PrintCopy copy;
    QString documentName;
    QString path; ///< of the file to print into; empty: to the printer of `job`
    PrintJob job;
};

/// The prints that are under way. They belong to the program: a window that goes takes none along, and the end of the
/// program waits for them. Main thread only.
class PrintRuns : public QObject {
    Q_OBJECT

public:
    static PrintRuns& shared();

    /// Puts the copy together on a thread of its own and hands it on. `ended` gets an empty string, or a sentence why
    /// it failed.
    void start(const PrintOrder& order, std::function<void(const QString& failure)> ended);

    [[nodiscard]] bool isIdle() const { return m_names.empty(); }

    /// The names of the documents, oldest first.
    [[nodiscard]] QStringList documentNames() const { return {m_names.begin(), m_names.end()}; }

Q_SIGNALS:
    /// The last of them has ended.
    void becameIdle();

private:
    using Names = std::list<QString>;

    PrintRuns() = default;
    void end(Names::iterator run, const QString& failure, const std::function<void(const QString& failure)>& ended);

    Names m_names;
};
