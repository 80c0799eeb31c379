// formula_bench FILE
//
// Sets the formulas of FILE, one a line, over and over on one core with a warm font, and prints one JSON object for
// each of: source to display tree, source to trimmed image at 22 points, and a formula that was drawn before.
// bench/math.sh runs it beside another program. The exit code tells only whether the measuring was possible.

#include "MTFontManager.h"
#include "MTMathList.h"
#include "MTMathListBuilder.h"
#include "MTMathListDisplay.h"
#include "MTTypesetter.h"
#include "MathImageRenderer.h"
#include "Measurement.h"

#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <cstdio>

using namespace Measurement;

namespace {

constexpr double treeAim = 69'500; // five times what the other program did on such a machine
constexpr double imageAim = 1'500;
constexpr double hitAim = 2; // microseconds
constexpr double fontSize = 22;
constexpr double duration = 1500; // milliseconds of processor time for each job

QStringList formulasOf(const char* name) {
    QFile file(QFile::decodeName(name));
    if (!file.open(QFile::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

/// Formulas a second, once round for warming up.
template <typename Job>
double rateOf(const QStringList& formulas, Job&& job) {
    for (const QString& formula : formulas)
        job(formula);
    const double start = threadCpu();
    long long done = 0;
    do {
        for (const QString& formula : formulas)
            job(formula);
        done += formulas.size();
    } while (threadCpu() - start < duration);
    return double(done) / (threadCpu() - start) * 1000;
}

void print(const QJsonObject& result) {
    std::puts(QJsonDocument(result).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList formulas = argc == 2 ? formulasOf(argv[1]) : QStringList();
    if (formulas.isEmpty()) {
        std::fputs("Usage: formula_bench FILE\n", stderr);
        return 2;
    }
    const auto font = MTFontManager::fontManager().latinModernFont(fontSize);
    int failures = 0;
    const double trees = rateOf(formulas, [&](const QString& formula) {
        const auto list = MTMathListBuilder::build(formula);
        if (!list || MTTypesetter::createLineForMathList(*list, font, MTLineStyle::display)->width() <= 0)
            ++failures;
    });
    print({{QStringLiteral("job"), QStringLiteral("formula-to-tree")},
           {QStringLiteral("formulas"), int(formulas.size())},
           {QStringLiteral("failures"), failures},
           {QStringLiteral("per_second"), std::round(trees)},
           {QStringLiteral("aim"), QStringLiteral("5 times the reference, about %1").arg(treeAim)},
           {QStringLiteral("to_aim"), std::round(treeAim - trees)}});
    for (const double ratio : {1.0, 2.0}) {
        const double images = rateOf(formulas, [&](const QString& formula) {
            MathImageRenderer::removeAll();
            if (!MathImageRenderer::render(formula, fontSize, Qt::black, ratio))
                ++failures;
        });
        print({{QStringLiteral("job"), QStringLiteral("formula-to-image")},
               {QStringLiteral("device_pixel_ratio"), ratio},
               {QStringLiteral("failures"), failures},
               {QStringLiteral("per_second"), std::round(images)},
               {QStringLiteral("aim"), QStringLiteral("at least %1 a second").arg(imageAim)},
               {QStringLiteral("to_aim"), std::round(imageAim - images)}});
    }
    const double hits = 1e6 / rateOf(formulas, [](const QString& formula) {
                            (void)MathImageRenderer::render(formula, fontSize, Qt::black);
                        });
    print({{QStringLiteral("job"), QStringLiteral("formula-drawn-before")},
           {QStringLiteral("microseconds"), rounded(hits)},
           {QStringLiteral("aim"), QStringLiteral("below %1 microseconds").arg(hitAim)},
           {QStringLiteral("to_aim"), rounded(hits - hitAim)}});
    return 0;
}
