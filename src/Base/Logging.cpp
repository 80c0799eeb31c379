#include "Logging.h"

#include <QStringList>

namespace Logging {

// From QtFatalMsg on: nothing of ours is that severe, so each is silent until a rule turns it on.
static constexpr QtMsgType silent = QtFatalMsg;

const QLoggingCategory& pdf() {
    static const QLoggingCategory category("quillo.pdf", silent);
    return category;
}

const QLoggingCategory& document() {
    static const QLoggingCategory category("quillo.document", silent);
    return category;
}

const QLoggingCategory& view() {
    static const QLoggingCategory category("quillo.view", silent);
    return category;
}

const QLoggingCategory& ai() {
    static const QLoggingCategory category("quillo.ai", silent);
    return category;
}

const QLoggingCategory& math() {
    static const QLoggingCategory category("quillo.math", silent);
    return category;
}

static void appendCauses(QStringList& texts, std::exception_ptr error) {
    while (error) {
        std::exception_ptr nested;
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& known) {
            texts.append(QString::fromUtf8(known.what()));
            if (const auto* outer = dynamic_cast<const std::nested_exception*>(&known))
                nested = outer->nested_ptr();
        } catch (...) {
            texts.append(QStringLiteral("an exception of unknown type"));
        }
        error = nested;
    }
}

QString causes(const std::exception& error) {
    QStringList texts{QString::fromUtf8(error.what())};
    if (const auto* outer = dynamic_cast<const std::nested_exception*>(&error))
        appendCauses(texts, outer->nested_ptr());
    return texts.join(QLatin1String(" < "));
}

QString currentCauses() {
    QStringList texts;
    appendCauses(texts, std::current_exception());
    return texts.join(QLatin1String(" < "));
}

} // namespace Logging
