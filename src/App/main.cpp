#include "ActivationToken.h"
#include "ColorScheme.h"
#include "CommandLine.h"
#include "ConverterProcess.h"
#include "ConverterServer.h"
#include "InstanceChannel.h"
#include "QuilloApp.h"
#include "RecognizerProcess.h"
#include "RecognizerServer.h"
#include "UnixSignals.h"

#include <QApplication>
#include <QDir>
#include <QIcon>

#include <cstdio>

static constexpr int mistakeExitCode = 2;

static CommandLine commandLine(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    return CommandLine::parse(arguments, QDir::currentPath());
}

static void nameApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("Quillo"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLO_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.quillo.Quillo"));
}

/// The program without a window: texts for the terminal, or for the program that started it.
static int printed(const CommandLine& line, char* program) {
    switch (line.kind) {
    case CommandLine::Kind::version:
        std::puts("Quillo " QUILLO_VERSION);
        return 0;
    case CommandLine::Kind::help:
        std::fputs(qUtf8Printable(CommandLine::usage()), stdout);
        return 0;
    case CommandLine::Kind::recognizer:
        return RecognizerServer::run();
    case CommandLine::Kind::converter:
        return ConverterServer::run(program, line.conversion);
    default:
        std::fprintf(stderr, "quillo: %s\n%s", qUtf8Printable(line.mistake), qUtf8Printable(CommandLine::usage()));
        return mistakeExitCode;
    }
}

int main(int argc, char** argv) {
    nameApplication();
    const CommandLine line = commandLine(argc, argv);
    if (line.kind != CommandLine::Kind::run)
        return printed(line, argv[0]);

    RecognizerProcess::setCommand({"/proc/self/exe", CommandLine::recognizerOption.toLatin1()});
    ConverterProcess::setCommand({"/proc/self/exe", CommandLine::converterOption.toLatin1()});
    ActivationToken::makeRoom();
    // Qt must not look for options of its own among the files.
    int onlyTheName = 1;
    QApplication application(onlyTheName, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/org.quillo.Quillo.svg")));

    // First, so that nothing of what follows is left behind when the process is asked to end.
    const UnixSignals signals;
    InstanceChannel channel;
    QStringList addresses;
    for (const QUrl& file : line.files)
        addresses.append(file.toString(QUrl::FullyEncoded));
    if (channel.start(addresses) == InstanceChannel::Role::handedOver)
        return 0;

    ColorScheme colorScheme;
    colorScheme.follow();
    QuilloApp quillo;
    QObject::connect(&channel, &InstanceChannel::filesReceived, &quillo, &QuilloApp::openFromOtherStart);
    QObject::connect(&channel, &InstanceChannel::reopenRequested, &quillo, &QuilloApp::reopenFromOtherStart);
    QObject::connect(&signals, &UnixSignals::quitRequested, &quillo.sessionEnd(), &SessionEnd::endNow);
    quillo.launch(line.files);
    return QApplication::exec();
}
