#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

/// What the program was started with: `quillo [FILE…]`, `--version` or `--help`.
struct CommandLine {
    /// `recognizer`: what the program starts for itself, see `RecognizerServer`.
    enum class Kind { run, version, help, mistake, recognizer };

    /// The only argument of a recognizer.
    inline static const QString recognizerOption = QStringLiteral("--recognizer");

    Kind kind = Kind::run;
    QList<QUrl> files; ///< in the order given, local files absolute
    QString mistake;   ///< a sentence for the terminal

    /// `arguments` without the program's name. Names of files are relative to `folder`; after `--` everything is one.
    [[nodiscard]] static CommandLine parse(const QStringList& arguments, const QString& folder);

    [[nodiscard]] static QString usage();
};
