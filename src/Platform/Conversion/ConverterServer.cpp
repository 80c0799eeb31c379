#include "ConverterServer.h"

#include "BookPages.h"
#include "HtmlPages.h"
#include "PicturePages.h"
#include "TextPages.h"

#include <QGuiApplication>

int ConverterServer::run(char* program, const QStringList& arguments) {
    constexpr int failure = 1;
    const auto kind = arguments.size() == 3 ? ConverterProcess::kindNamed(arguments[0]) : std::nullopt;
    if (!kind)
        return failure;
    int count = 1;
    const QGuiApplication application(count, &program);
    return convert(*kind, arguments[1], arguments[2]) ? 0 : failure;
}

bool ConverterServer::convert(ConverterProcess::Kind kind, const QString& source, const QString& destination) {
    switch (kind) {
    case ConverterProcess::Kind::text:
        return TextPages::write(source, destination);
    case ConverterProcess::Kind::html:
        return HtmlPages::write(source, destination);
    case ConverterProcess::Kind::picture:
        return PicturePages::write(source, destination);
    case ConverterProcess::Kind::book:
        return BookPages::write(source, destination);
    }
    return false;
}
