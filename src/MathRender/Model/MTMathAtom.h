#pragma once

#include "MTFontStyle.h"
#include "MTMathAtomType.h"
#include "MTRange.h"

#include <QString>

#include <memory>
#include <vector>

class MTMathList;

/// One element of a formula: a type, a text (the nucleus), scripts where the type carries them. Composite kinds are
/// subclasses with further lists. Atoms own their lists and are shared by reference. Any thread may use an atom, one
/// at a time; formulas that share no atom are independent.
class MTMathAtom {
public:
    /// The nucleus of a `radical` is always blank, whatever `value` is.
    explicit MTMathAtom(MTMathAtomType atomType, QString value = {});
    virtual ~MTMathAtom();

    MTMathAtom& operator=(const MTMathAtom&) = delete;

    MTMathAtomType type;
    MTFontStyle fontStyle = MTFontStyle::defaultStyle;
    /// Set by the finalizing of the list; (0, 0) until then.
    MTRange indexRange;
    /// The characters or the name that the atom stands for.
    QString nucleus;
    /// The atoms that went into this one by `fuse`, in order; empty when nothing was fused.
    std::vector<std::shared_ptr<MTMathAtom>> fusedAtoms;

    [[nodiscard]] bool scriptsAllowed() const { return ::scriptsAllowed(type); }

    [[nodiscard]] const std::shared_ptr<MTMathList>& subScript() const { return m_subScript; }
    [[nodiscard]] const std::shared_ptr<MTMathList>& superScript() const { return m_superScript; }
    /// Null removes the script. Throws MTException, with the script removed, for a list on a type without scripts.
    void setSubScript(std::shared_ptr<MTMathList> list);
    void setSuperScript(std::shared_ptr<MTMathList> list);

    /// A deep copy of the same class.
    [[nodiscard]] std::shared_ptr<MTMathAtom> copy() const;

    /// A deep copy with every list in it finalized.
    [[nodiscard]] std::shared_ptr<MTMathAtom> finalized() const;

    /// Takes over the text, the places and the scripts of `atom`. Both must have the same type, and this one no
    /// script; otherwise nothing changes but for a line on the standard output.
    void fuse(const std::shared_ptr<MTMathAtom>& atom);

    /// The atom as LaTeX source. Defined in Parser/MTMathListWriter.cpp: the model itself knows no commands.
    [[nodiscard]] QString string() const;

    /// A debugging text.
    [[nodiscard]] virtual QString description() const;

protected:
    using ListTransform = std::shared_ptr<MTMathList> (*)(const std::shared_ptr<MTMathList>&);

    /// Shares every list with `other`; the result is only fit for use after `unshare`.
    MTMathAtom(const MTMathAtom& other);

    /// A copy of the same class that still shares its lists.
    [[nodiscard]] virtual std::shared_ptr<MTMathAtom> clone() const;

    /// Replaces each list that a clone still shares with its original by `transform` of it. Every class does it for
    /// its own lists and calls its base.
    virtual void unshare(ListTransform transform);

    /// `clone` for the class `Atom`, whose copying constructor is protected.
    template <typename Atom>
    [[nodiscard]] static std::shared_ptr<MTMathAtom> cloneOf(const Atom& atom) {
        struct Clone final : Atom {
            explicit Clone(const Atom& original) : Atom(original) {}
        };
        return std::make_shared<Clone>(atom);
    }

    /// The scripts in a debugging text: "^{...}_{...}".
    [[nodiscard]] QString scriptsDescription() const;

    /// A list in a debugging text; "placeholder" for a missing one.
    [[nodiscard]] static QString listDescription(const std::shared_ptr<MTMathList>& list);

private:
    std::shared_ptr<MTMathList> m_subScript;
    std::shared_ptr<MTMathList> m_superScript;
};
