#include "DialectSpaces.h"

#include <QString>

#include <algorithm>

static constexpr int leastSpace = -90;
static constexpr int mostSpace = 720;

QString DialectSpaces::latex(int mu) {
    QString result;
    int rest = std::clamp(mu, leastSpace, mostSpace);
    // The engine has spaces of −3, 3, 4, 5 and 18 mu: no sum of the others makes 1 or 2.
    while (rest < 0 || rest == 1 || rest == 2) {
        result += QLatin1String("\\!");
        rest += 3;
    }
    for (; rest >= 18 && rest != 19 && rest != 20; rest -= 18)
        result += QLatin1String("\\quad ");
    for (; rest >= 8; rest -= 5)
        result += QLatin1String("\\;");
    for (; rest >= 3; rest = rest > 5 ? rest - 3 : 0)
        result += rest == 5 ? QLatin1String("\\;") : rest == 4 ? QLatin1String("\\>") : QLatin1String("\\,");
    return result;
}

std::optional<int> DialectSpaces::muOf(QStringView length) {
    struct Unit {
        QStringView name;
        double mu;
    };
    // Of a font of 10 points, as formulas are written for.
    static constexpr Unit units[] = {{u"mu", 1},   {u"em", 18},   {u"ex", 7.75}, {u"pt", 1.8},
                                     {u"mm", 5.1}, {u"cm", 51.2}, {u"in", 130},  {u"px", 1.35}};
    const QStringView text = length.trimmed();
    for (const Unit& unit : units) {
        bool isNumber = false;
        const double number = text.endsWith(unit.name) ? text.chopped(unit.name.size()).toDouble(&isNumber) : 0;
        if (isNumber)
            return static_cast<int>(std::clamp(number * unit.mu, double(leastSpace), double(mostSpace)));
    }
    return std::nullopt;
}
