#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

/// What the program was started with: `quillo [FILE…]`, `--version` or `--help`.
struct CommandLine {
    /// `recognizer` and `converter`: what the program starts for itself, see `RecognizerServer` and `ConverterServer`.
    enum class Kind { run, version, help, mistake, recognizer, converter };

    /// The only argument of a recognizer.
    inline static const QString recognizerOption = QStringLiteral("--recognizer");

    /// The first argument of a converter; others follow.
    inline static const QString converterOption = QStringLiteral("--converter");

    Kind kind = Kind::run;
    QList<QUrl> files;      ///< in the order given, local files absolute
    QStringList conversion; ///< the arguments of a converter
    QString mistake;        ///< a sentence for the terminal

    /// `arguments` without the program's name. Names of files are relative to `folder`; after `--` everything is one.
    [[nodiscard]] static CommandLine parse(const QStringList& arguments, const QString& folder);

    [[nodiscard]] static QString usage();
};
