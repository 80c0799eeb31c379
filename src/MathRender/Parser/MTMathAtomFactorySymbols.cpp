// The commands of MTMathAtomFactory that are symbols, spaces and styles.

#include "MTCommandTables.h"
#include "MTLargeOperator.h"
#include "MTMathAtomFactory.h"
#include "MTMathSpace.h"
#include "MTMathStyle.h"

#include <QHash>

#include <atomic>
#include <mutex>
#include <shared_mutex>

namespace {

/// The commands that were added to those of the tables.
class AddedSymbols {
public:
    static AddedSymbols& shared() {
        static AddedSymbols symbols;
        return symbols;
    }

    void add(const QString& name, const MTMathAtom& value) {
        std::shared_ptr<const MTMathAtom> atom = value.copy();
        const std::unique_lock lock(m_mutex);
        if (!atom->nucleus.isEmpty()) {
            const auto known = m_names.constFind(atom->nucleus);
            if (known == m_names.constEnd() || comesFirst(name, *known))
                m_names.insert(atom->nucleus, name);
        }
        m_atoms.insert(name, atom);
        m_isEmpty.store(false, std::memory_order_release);
    }

    [[nodiscard]] std::shared_ptr<MTMathAtom> atom(QStringView name) const {
        if (m_isEmpty.load(std::memory_order_acquire))
            return nullptr;
        const std::shared_lock lock(m_mutex);
        const auto found = m_atoms.constFind(name.toString());
        return found != m_atoms.constEnd() ? (*found)->copy() : nullptr;
    }

    [[nodiscard]] std::optional<QString> name(const QString& nucleus) const {
        if (m_isEmpty.load(std::memory_order_acquire))
            return std::nullopt;
        const std::shared_lock lock(m_mutex);
        const auto found = m_names.constFind(nucleus);
        return found != m_names.constEnd() ? std::optional(*found) : std::nullopt;
    }

    static bool comesFirst(const QString& left, const QString& right) {
        return left.size() != right.size() ? left.size() < right.size() : left < right;
    }

private:
    mutable std::shared_mutex m_mutex;
    /// Spares the look-ups of a program that adds nothing the lock.
    std::atomic<bool> m_isEmpty = true;
    QHash<QString, std::shared_ptr<const MTMathAtom>> m_atoms;
    QHash<QString, QString> m_names; ///< by nucleus
};

} // namespace

namespace MTMathAtomFactory {

std::shared_ptr<MTMathAtom> atomForLatexSymbol(QStringView name) {
    if (const auto* alias = MTCommandTables::aliasNamed(name))
        name = alias->symbol;
    if (std::shared_ptr<MTMathAtom> added = AddedSymbols::shared().atom(name))
        return added;
    if (const auto* symbol = MTCommandTables::symbolNamed(name)) {
        QString nucleus = MTCommandTables::string(symbol->nucleus);
        if (symbol->type == MTMathAtomType::largeOperator)
            return std::make_shared<MTLargeOperator>(std::move(nucleus), symbol->limits);
        return std::make_shared<MTMathAtom>(symbol->type, std::move(nucleus));
    }
    if (const auto* space = MTCommandTables::spaceNamed(name))
        return std::make_shared<MTMathSpace>(space->width);
    if (const auto* style = MTCommandTables::styleNamed(name))
        return std::make_shared<MTMathStyle>(style->style);
    return nullptr;
}

std::optional<QString> latexSymbolName(const MTMathAtom& atom) {
    if (atom.nucleus.isEmpty())
        return std::nullopt;
    std::optional<QString> added = AddedSymbols::shared().name(atom.nucleus);
    const auto* const symbol = MTCommandTables::symbolWithNucleus(atom.nucleus);
    if (!symbol)
        return added;
    QString name = MTCommandTables::string(symbol->name);
    return added && AddedSymbols::comesFirst(*added, name) ? added : std::optional(std::move(name));
}

void addLatexSymbol(const QString& name, const MTMathAtom& value) {
    AddedSymbols::shared().add(name, value);
}

std::vector<QString> supportedLatexSymbolNames() {
    std::vector<QString> names;
    for (const auto& symbol : MTCommandTables::allSymbols())
        names.push_back(MTCommandTables::string(symbol.name));
    for (const auto& space : MTCommandTables::allSpaces())
        names.push_back(MTCommandTables::string(space.name));
    for (const auto& style : MTCommandTables::allStyleNames())
        names.push_back(MTCommandTables::string(style.name));
    return names;
}

} // namespace MTMathAtomFactory
