// The program of ConverterProcessTest.cpp.

#include "ConverterServer.h"

#include <QFile>

// Confined, it can't look for leaks, which takes a look at itself from outside.
extern "C" const char* __asan_default_options() { // NOLINT(bugprone-reserved-identifier)
    return "detect_leaks=0";
}

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QFile::decodeName(argv[i]);
    return ConverterServer::run(argv[0], arguments);
}
