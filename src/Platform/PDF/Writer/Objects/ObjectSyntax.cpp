#include "ObjectSyntax.h"

#include "Logging.h"

#include <qpdf/QPDFObjectHandle.hh>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <exception>
#include <utility>
#include <vector>

namespace {

constexpr int deepestNesting = 100;

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0';
}

/// By the byte, since this is asked for each of the millions that a file's objects have.
constexpr std::array<bool, 256> irregular = [] {
    std::array<bool, 256> table{};
    for (const char c : std::string_view(" \n\r\t\f\0()<>[]{}/%", 16))
        table[static_cast<unsigned char>(c)] = true;
    return table;
}();

bool isRegular(char c) {
    return !irregular[static_cast<unsigned char>(c)];
}

bool isInteger(std::string_view token) {
    return !token.empty() && std::all_of(token.begin(), token.end(), [](char c) { return c >= '0' && c <= '9'; });
}

int toInt(std::string_view digits) {
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

/// Where the string ends that starts at `at` with its bracket; the end of the bytes when it doesn't end.
std::size_t endOfString(std::string_view bytes, std::size_t at) {
    if (bytes[at] == '<')
        return std::min(bytes.find('>', at), bytes.size() - 1) + 1;
    int open = 0;
    for (; at < bytes.size(); ++at) {
        if (bytes[at] == '\\')
            ++at;
        else if (bytes[at] == '(')
            ++open;
        else if (bytes[at] == ')' && --open == 0)
            return at + 1;
    }
    return bytes.size();
}

/// Copies one value from bytes to a text; false once it can't.
class Copy {
public:
    explicit Copy(std::string_view bytes) : m_bytes(bytes) {}

    bool value(std::string& text, int depth = 0) {
        skipSpace();
        if (m_at >= m_bytes.size() || depth > deepestNesting)
            return false;
        switch (m_bytes[m_at]) {
        case '[':
            return array(text, depth);
        case '(':
            return string(text);
        case '<':
            return m_bytes.substr(m_at, 2) == "<<" ? dictionary(text, depth) : string(text);
        case '/':
            text += name();
            return true;
        default:
            return numberOrKeyword(text);
        }
    }

    /// Those of a dictionary, in the order of their keys.
    bool entries(std::vector<ObjectSyntax::Entry>& entries, int depth = 0) {
        if (!skip("<<"))
            return false;
        while (!skip(">>")) {
            if (m_at >= m_bytes.size() || m_bytes[m_at] != '/')
                return false;
            auto& [key, entry] = entries.emplace_back(name(), std::string());
            if (!value(entry, depth + 1))
                return false;
        }
        std::stable_sort(entries.begin(), entries.end(),
                         [](const auto& one, const auto& other) { return one.first < other.first; });
        return true;
    }

    bool isAtEnd() {
        skipSpace();
        return m_at == m_bytes.size();
    }

    std::optional<QPDFObjGen> pageOfPlace() {
        if ((skip("<<") && !skip("/D")) || !skip("["))
            return std::nullopt;
        skipSpace();
        const std::string_view number = regular();
        skipSpace();
        const std::string_view generation = regular();
        skipSpace();
        if (!isInteger(number) || !isInteger(generation) || regular() != "R")
            return std::nullopt;
        return QPDFObjGen(toInt(number), toInt(generation));
    }

private:
    void skipSpace() {
        while (m_at < m_bytes.size() && isSpace(m_bytes[m_at]))
            ++m_at;
    }

    bool skip(std::string_view token) {
        skipSpace();
        if (m_bytes.substr(m_at, token.size()) != token)
            return false;
        m_at += token.size();
        return true;
    }

    std::string_view regular() {
        const std::size_t start = m_at;
        while (m_at < m_bytes.size() && isRegular(m_bytes[m_at]))
            ++m_at;
        return m_bytes.substr(start, m_at - start);
    }

    std::string_view name() {
        const std::size_t start = m_at++;
        return m_bytes.substr(start, regular().size() + 1);
    }

    bool array(std::string& text, int depth) {
        ++m_at;
        text += "[ ";
        while (!skip("]")) {
            if (!value(text, depth + 1))
                return false;
            text += ' ';
        }
        text += ']';
        return true;
    }

    bool dictionary(std::string& text, int depth) {
        std::vector<ObjectSyntax::Entry> all;
        if (!entries(all, depth))
            return false;
        text += "<< ";
        for (const auto& [key, entry] : all)
            text.append(key).append(1, ' ').append(entry).append(1, ' ');
        text += ">>";
        return true;
    }

    bool string(std::string& text) {
        const std::size_t start = m_at;
        m_at = endOfString(m_bytes, m_at);
        const std::string_view token = m_bytes.substr(start, m_at - start);
        const char last = token.back();
        if (token.size() < 2 || (last != ')' && last != '>'))
            return false;
        const bool isPlain = token.front() == '(' && std::all_of(token.begin() + 1, token.end() - 1, [](char c) {
                                 return c >= ' ' && c <= '~' && c != '\\' && c != '(' && c != ')';
                             });
        if (isPlain)
            text += token;
        else
            text += QPDFObjectHandle::parse(std::string(token)).unparse();
        return true;
    }

    bool numberOrKeyword(std::string& text) {
        const std::string_view token = regular();
        text += token;
        if (!isInteger(token))
            return !token.empty();
        const std::size_t end = m_at;
        skipSpace();
        const std::string_view generation = regular();
        skipSpace();
        if (isInteger(generation) && regular() == "R")
            text.append(1, ' ').append(generation).append(" R");
        else
            m_at = end;
        return true;
    }

    std::string_view m_bytes;
    std::size_t m_at = 0;
};

/// Calls `visit` for each reference in the value, with where it starts and ends.
template <typename Visit>
void scanReferences(std::string_view value, Visit visit) {
    std::string_view last[2]; // the tokens before this one
    for (std::size_t at = 0; at < value.size();) {
        const char c = value[at];
        if (c == '(' || (c == '<' && value.substr(at, 2) != "<<")) {
            at = endOfString(value, at);
        } else if (!isRegular(c)) {
            at += c == '<' ? 2 : 1;
            if (c == ' ')
                continue;
            // The characters of a name are no token of their own.
            while (c == '/' && at < value.size() && isRegular(value[at]))
                ++at;
        } else {
            const std::size_t start = at;
            while (at < value.size() && isRegular(value[at]))
                ++at;
            const std::string_view token = value.substr(start, at - start);
            if (token == "R" && isInteger(last[0]) && isInteger(last[1]))
                visit(QPDFObjGen(toInt(last[0]), toInt(last[1])), std::size_t(last[0].data() - value.data()), at);
            last[0] = std::exchange(last[1], token);
            continue;
        }
        last[0] = last[1] = {};
    }
}

/// True when `read` took all of the bytes.
template <typename Read>
bool copies(std::string_view bytes, Read read) {
    try {
        Copy copy(bytes);
        return read(copy) && copy.isAtEnd();
    } catch (const std::exception& error) {
        qCWarning(Logging::pdf) << "reading a string of a file failed:" << Logging::causes(error);
        return false;
    }
}

} // namespace

std::optional<std::string> ObjectSyntax::canonical(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 4);
    return copies(bytes, [&text](Copy& copy) { return copy.value(text); }) ? std::optional(std::move(text))
                                                                           : std::nullopt;
}

std::optional<std::vector<ObjectSyntax::Entry>> ObjectSyntax::entries(std::string_view bytes) {
    std::vector<Entry> found;
    const auto isSameKey = [](const Entry& one, const Entry& other) { return one.first == other.first; };
    if (!copies(bytes, [&found](Copy& copy) { return copy.entries(found); }) ||
        std::adjacent_find(found.begin(), found.end(), isSameKey) != found.end())
        return std::nullopt;
    return found;
}

std::optional<QPDFObjGen> ObjectSyntax::pageOfPlace(std::string_view bytes) {
    return Copy(bytes).pageOfPlace();
}

void ObjectSyntax::forEachReference(std::string_view value, const std::function<void(QPDFObjGen)>& visit) {
    scanReferences(value, [&visit](QPDFObjGen id, std::size_t, std::size_t) { visit(id); });
}

std::string ObjectSyntax::withReferences(std::string_view value,
                                         const std::function<QPDFObjectHandle(QPDFObjGen)>& replacement) {
    std::string text;
    text.reserve(value.size() + value.size() / 8);
    std::size_t done = 0;
    scanReferences(value, [&](QPDFObjGen id, std::size_t start, std::size_t end) {
        text.append(value, done, start - done).append(replacement(id).unparse());
        done = end;
    });
    return text.append(value, done);
}

std::string ObjectSyntax::withStrings(std::string_view value,
                                      const std::function<std::string(const std::string& string)>& replacement) {
    std::string text;
    text.reserve(value.size());
    for (std::size_t at = 0; at < value.size();) {
        if (value.substr(at, 2) == "<<") {
            text += "<<";
            at += 2;
        } else if (value[at] == '(' || value[at] == '<') {
            const std::size_t end = endOfString(value, at);
            text += replacement(QPDFObjectHandle::parse(std::string(value.substr(at, end - at))).getStringValue());
            at = end;
        } else {
            text += value[at++];
        }
    }
    return text;
}
