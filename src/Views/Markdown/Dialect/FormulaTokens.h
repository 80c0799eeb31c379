#pragma once

#include <QStringView>

#include <cstddef>
#include <vector>

/// A piece of a formula's source as TeX reads it.
struct FormulaToken {
    enum class Kind {
        character, ///< with the marks that combine with it
        command,
        blank, ///< any number of blanks
        open,  ///< {
        close, ///< }
        superscript,
        subscript,
        cell, ///< &
        end   ///< behind the last
    };

    Kind kind = Kind::end;
    /// As it stands in the source; of a command, its name without the backslash.
    QStringView text;

    /// The first scalar of a character; 0 for other kinds.
    [[nodiscard]] char32_t character() const;
    [[nodiscard]] QStringView marks() const;
    [[nodiscard]] bool is(char32_t wanted) const { return kind == Kind::character && character() == wanted; }
    [[nodiscard]] bool isCommand(QStringView name) const { return kind == Kind::command && text == name; }
};

/// The tokens of a formula, read from left to right. Characters that are never seen, such as joiners, are left out.
/// `source` must outlive them.
class FormulaTokens {
public:
    explicit FormulaTokens(QStringView source);

    [[nodiscard]] const FormulaToken& peek() const { return m_tokens[m_position]; }
    /// The token behind those that `peek` and blanks are.
    [[nodiscard]] const FormulaToken& peekBehind() const;
    const FormulaToken& next();
    void skipBlanks();
    [[nodiscard]] std::size_t position() const { return m_position; }
    /// Back to where `position` was that.
    void moveTo(std::size_t position) { m_position = position; }
    /// Leaves nothing to be read.
    void moveToEnd() { m_position = m_tokens.size() - 1; }

private:
    std::vector<FormulaToken> m_tokens; ///< the last is the end
    std::size_t m_position = 0;
};
