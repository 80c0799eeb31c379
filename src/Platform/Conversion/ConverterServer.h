#pragma once

#include "ConverterProcess.h"

#include <QStringList>

#include <cstdint>

/// The program that converts one file for another program: `ConverterProcess` starts it.
namespace ConverterServer {

/// Address space, bytes. Sanitizers ask for far more than they use.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr std::uint64_t mostMemory = UINT64_MAX;
#else
inline constexpr std::uint64_t mostMemory = std::uint64_t(2) << 30U;
#endif

/// `arguments` are the name of a kind, the source and the destination. The exit code is 0 for a file that is there.
/// Makes an application object, so none may exist; `program` is the name that this was started by.
[[nodiscard]] int run(char* program, const QStringList& arguments);

/// The same here: false, with nothing left. Needs a QGuiApplication; any thread.
[[nodiscard]] bool convert(ConverterProcess::Kind kind, const QString& source, const QString& destination);

} // namespace ConverterServer
