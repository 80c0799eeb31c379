#pragma once

#include "MTInnerListAtom.h"

/// The base of the three atoms that colour: a list, and a colour as it was written ("#ff0000", "red").
class MTColoredAtom : public MTInnerListAtom {
public:
    QString colorString;

    /// The command that makes the atom, without its backslash.
    [[nodiscard]] virtual QLatin1String command() const = 0;

    [[nodiscard]] QString description() const override;

protected:
    using MTInnerListAtom::MTInnerListAtom;
    MTColoredAtom(const MTColoredAtom&) = default;
};

/// A list in a colour of its own, set apart from its neighbours.
class MTMathColor : public MTColoredAtom {
public:
    MTMathColor();
    [[nodiscard]] QLatin1String command() const override { return QLatin1String("color"); }

protected:
    MTMathColor(const MTMathColor&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};

/// A list in a colour of its own, spaced as its first atom would be.
class MTMathTextColor : public MTColoredAtom {
public:
    MTMathTextColor();
    [[nodiscard]] QLatin1String command() const override { return QLatin1String("textcolor"); }

protected:
    MTMathTextColor(const MTMathTextColor&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};

/// A list on a coloured ground.
class MTMathColorbox : public MTColoredAtom {
public:
    MTMathColorbox();
    [[nodiscard]] QLatin1String command() const override { return QLatin1String("colorbox"); }

protected:
    MTMathColorbox(const MTMathColorbox&) = default;
    [[nodiscard]] std::shared_ptr<MTMathAtom> clone() const override;
};
